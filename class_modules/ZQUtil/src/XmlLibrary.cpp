// libxmlparser is for what goes to and comes from the update server alone: it is loaded, with the library below it, by
// the first document. Where it is missing no text is a document.
#include "xmlparser.h"
#include "zq_lazy_library.h"

namespace {

zq_LazyLibrary g_xml("libxmlparser.so");

}  // namespace

extern "C" {

ZQ_PASS_ON_OR_NOTHING(g_xml, dom_Document*, dom__parse, (const char* text, const char* file, int line),
                      (text, file, line))
ZQ_PASS_ON_OR_NOTHING(g_xml, dom_Document*, dom__create, (const char* rootName, const char* file, int line),
                      (rootName, file, line))
ZQ_PASS_ON_OR_NOTHING(g_xml, void, dom__free, (dom_Document * document, const char* file, int line),
                      (document, file, line))
ZQ_PASS_ON_OR_NOTHING(g_xml, dom_Element*, dom_GetRoot, (dom_Document * document), (document))
ZQ_PASS_ON_OR_NOTHING(g_xml, dom_Element*, dom_GetFirstChild, (dom_Element * element), (element))
ZQ_PASS_ON_OR_NOTHING(g_xml, dom_Element*, dom_GetNextSibling, (dom_Element * element), (element))
ZQ_PASS_ON_OR_NOTHING(g_xml, const char*, dom_GetName, (const dom_Element* element), (element))
ZQ_PASS_ON_OR_NOTHING(g_xml, const char*, dom_GetAttribute, (const dom_Element* element, const char* name),
                      (element, name))
ZQ_PASS_ON_OR_NOTHING(g_xml, bool, dom_GetIntegerAttribute,
                      (const dom_Element* element, const char* name, int32_t* value), (element, name, value))
ZQ_PASS_ON_OR_NOTHING(g_xml, bool, dom_SetIntegerAttribute,
                      (dom_Element * element, const char* name, int32_t value), (element, name, value))
ZQ_PASS_ON_OR_NOTHING(g_xml, bool, dom_Serialise, (const dom_Element* element, _ZqString* text),
                      (element, text))

}  // extern "C"
