// Any text through the XML reader; what it takes is walked, written and read again.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "xmlparser.h"
#include "zq_trace.h"

namespace {

void Require(bool held) {
  if (!held) abort();
}

int Count(dom_Element* element, int depth) {
  Require(depth <= 64);
  Require(*dom_GetName(element) != '\0');
  int32_t number = 0;
  Require(!dom_GetIntegerAttribute(element, "id", &number) || dom_GetAttribute(element, "id") != nullptr);
  int count = 1;
  for (dom_Element* child = dom_GetFirstChild(element); child != nullptr; child = dom_GetNextSibling(child)) {
    count += Count(child, depth + 1);
  }
  return count;
}

std::string Written(dom_Element* element) {
  _ZqString* text = zq_StringCreate(0);
  Require(dom_Serialise(element, text));
  std::string copy(zq_StringText(text), zq_StringLength(text));
  zq_StringDestroy(text);
  return copy;
}

std::string WrittenAgain(const std::string& text) {
  dom_Document* document = dom__parse(text.c_str(), __FILE__, __LINE__);
  Require(document != nullptr);
  std::string again = Written(dom_GetRoot(document));
  dom__free(document, __FILE__, __LINE__);
  return again;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  zq_TraceRedirect("off", 0);
  const std::string text(reinterpret_cast<const char*>(data), size);
  dom_Document* document = dom__parse(text.c_str(), __FILE__, __LINE__);
  if (document == nullptr) return 0;
  dom_Element* root = dom_GetRoot(document);
  Require(root != nullptr && Count(root, 1) <= 10000);
  // A carriage return in a text is written as it is, and read as a line feed: only the second writing is stable.
  const std::string twice = WrittenAgain(Written(root));
  Require(WrittenAgain(twice) == twice);
  dom__free(document, __FILE__, __LINE__);
  return 0;
}
