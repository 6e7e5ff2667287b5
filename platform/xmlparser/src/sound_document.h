// What a parsed document must be besides well-formed, which the XML library is lenient about.
#ifndef XMLPARSER_SOUND_DOCUMENT_H
#define XMLPARSER_SOUND_DOCUMENT_H

#include <cstddef>
#include <pugixml.hpp>

constexpr size_t kMaxBytes = size_t{1} << 20;
constexpr int kMaxDepth = 64;
constexpr int kMaxElements = 10000;

// How a text is parsed for the check: everything kept, nothing converted.
constexpr unsigned int kParseRaw = (pugi::parse_full | pugi::parse_fragment | pugi::parse_ws_pcdata) &
                                   ~(pugi::parse_escapes | pugi::parse_eol | pugi::parse_wconv_attribute);

// Null when the document, parsed with kParseRaw, is sound; else what is wrong with it.
const char* WhatIsWrong(const pugi::xml_document& document);

#endif
