#include <charconv>
#include <string_view>

#include "document.h"

namespace {

dom_Element* FirstElementFrom(pugi::xml_node node) {
  while (node && node.type() != pugi::node_element) node = node.next_sibling();
  return ElementOf(node);
}

std::string_view WithoutBlanks(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == text.npos) return "";
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

}  // namespace

dom_Element* dom_GetRoot(dom_Document* document) {
  return document != nullptr ? ElementOf(document->tree.document_element()) : nullptr;
}

dom_Element* dom_GetFirstChild(dom_Element* element) {
  return FirstElementFrom(NodeOf(element).first_child());
}

dom_Element* dom_GetNextSibling(dom_Element* element) {
  return FirstElementFrom(NodeOf(element).next_sibling());
}

const char* dom_GetName(const dom_Element* element) {
  return NodeOf(element).name();
}

const char* dom_GetAttribute(const dom_Element* element, const char* name) {
  if (name == nullptr) return nullptr;
  const pugi::xml_attribute attribute = NodeOf(element).attribute(name);
  return attribute ? attribute.value() : nullptr;
}

bool dom_GetIntegerAttribute(const dom_Element* element, const char* name, int32_t* value) {
  const char* text = dom_GetAttribute(element, name);
  if (text == nullptr || value == nullptr) return false;
  std::string_view digits = WithoutBlanks(text);
  // A sign that from_chars does not know.
  if (digits.starts_with('+') && !digits.starts_with("+-")) digits.remove_prefix(1);
  int32_t number = 0;
  const auto [end, error] = std::from_chars(digits.begin(), digits.end(), number);
  if (error != std::errc() || end != digits.end()) return false;
  *value = number;
  return true;
}
