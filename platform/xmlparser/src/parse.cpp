#include <cstring>
#include <new>

#include "document.h"
#include "sound_document.h"
#include "zq_trace.h"

namespace {

int TraceInstance() {
  static const int instance = zq_TraceCreate("xmlparser", __FILE__, __LINE__);
  return instance;
}

dom_Document* Refuse(const char* why, const char* file, int line) {
  zq_Trace(TraceInstance(), ZQ_TRACE_FAILURE, 1, true, "document refused: %s (%s:%d)\n", why,
           file != nullptr ? file : "-", line);
  return nullptr;
}

// Null when the text is sound.
const char* WhatIsWrongWith(const char* text, size_t size) {
  if (size > kMaxBytes) return "too long";
  pugi::xml_document raw;
  const pugi::xml_parse_result result = raw.load_buffer(text, size, kParseRaw);
  return result ? WhatIsWrong(raw) : result.description();
}

}  // namespace

dom_Document* dom__parse(const char* text, const char* file, int line) try {
  if (text == nullptr) return Refuse("no text", file, line);
  const size_t size = strnlen(text, kMaxBytes + 1);
  const char* wrong = WhatIsWrongWith(text, size);
  if (wrong != nullptr) return Refuse(wrong, file, line);
  auto* document = new dom_Document;
  if (document->tree.load_buffer(text, size)) return document;
  delete document;
  return Refuse("no memory", file, line);
} catch (const std::bad_alloc&) {
  return Refuse("no memory", file, line);
}

void dom__free(dom_Document* document, const char* /*file*/, int /*line*/) {
  delete document;
}
