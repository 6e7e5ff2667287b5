// libxmlparser: small XML documents as a tree of elements.
//
// A text from outside is taken only when it is sound: well-formed, one root and no text beside it, no document
// type and so no entities but the five of XML and character numbers, no attribute twice in an element, at most
// 1 MiB, 64 levels and 10000 elements. Texts are UTF-8; an ISO-8859-1 document that declares itself so is
// converted.
//
// One thread at a time works with a document; different documents are free of each other.
#ifndef ZQ_XMLPARSER_H
#define ZQ_XMLPARSER_H

#include <stddef.h>
#include <stdint.h>

#include "zq_string.h"

#ifdef __cplusplus
extern "C" {
#endif

#define ZQ_XML_API __attribute__((visibility("default")))

typedef struct dom_Document dom_Document;
// Part of its document: good as long as that, never freed by itself. Every function takes a null element and
// answers as if there were nothing in it.
typedef struct dom_Element dom_Element;

// Null when the text (null too) is not sound, the reason in the trace, or there is no memory. Freed with
// dom__free.
ZQ_XML_API dom_Document* dom__parse(const char* text, const char* file, int line);
// A document with an empty root element of that name. Null when the name is not sound or there is no memory.
ZQ_XML_API dom_Document* dom__create(const char* rootName, const char* file, int line);
// Null is ignored.
ZQ_XML_API void dom__free(dom_Document* document, const char* file, int line);

// Never null for a document.
ZQ_XML_API dom_Element* dom_GetRoot(dom_Document* document);
// In the document's order, elements only; null when there is none.
ZQ_XML_API dom_Element* dom_GetFirstChild(dom_Element* element);
ZQ_XML_API dom_Element* dom_GetNextSibling(dom_Element* element);
// As written; the element's own text.
ZQ_XML_API const char* dom_GetName(const dom_Element* element);
// The attribute of exactly that name; "" is a text. Null when there is none.
ZQ_XML_API const char* dom_GetAttribute(const dom_Element* element, const char* name);
// Puts the attribute's decimal number (blanks around it allowed) into `value`. False, and `value` untouched,
// when there is no such attribute, it is no number or beyond int32_t.
ZQ_XML_API bool dom_GetIntegerAttribute(const dom_Element* element, const char* name, int32_t* value);

// A new last child. Null when the name is not sound, or there is no memory.
ZQ_XML_API dom_Element* dom_AddChild(dom_Element* element, const char* name);
// Sets an attribute, in place when it is there. False when the name is not sound, the text is null or holds
// what XML cannot (control characters), or there is no memory.
ZQ_XML_API bool dom_SetAttribute(dom_Element* element, const char* name, const char* text);
ZQ_XML_API bool dom_SetIntegerAttribute(dom_Element* element, const char* name, int32_t value);

// Appends the element and what is in it, without a declaration, line breaks and indentation of its own:
// <updateDone deviceId="34" updateId="12"/>. False, and `text` as it was, when there is no memory.
ZQ_XML_API bool dom_Serialise(const dom_Element* element, _ZqString* text);

#ifdef __cplusplus
}
#endif

#endif
