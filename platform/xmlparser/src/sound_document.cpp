#include "sound_document.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

#include "xml_text.h"

namespace {

const char* WhatIsWrongWithAttributes(const pugi::xml_node& element) {
  std::vector<std::string_view> names;
  for (const pugi::xml_attribute& attribute : element.attributes()) {
    if (!IsName(attribute.name())) return "a name of an attribute";
    if (!IsEscapedText(attribute.value())) return "the text of an attribute";
    names.emplace_back(attribute.name());
  }
  std::sort(names.begin(), names.end());
  if (std::adjacent_find(names.begin(), names.end()) != names.end()) return "an attribute twice";
  return nullptr;
}

bool IsBlank(const char* text) {
  return text[std::strspn(text, " \t\r\n")] == '\0';
}

class Check : public pugi::xml_tree_walker {
 public:
  const char* Wrong() const { return wrong_ != nullptr || roots_ == 1 ? wrong_ : "no root element"; }

  bool for_each(pugi::xml_node& node) override {
    wrong_ = depth() >= kMaxDepth ? "too deep" : Look(node);
    return wrong_ == nullptr;
  }

 private:
  bool OutsideRoot() const { return depth() == 0; }

  const char* Look(const pugi::xml_node& node) {
    switch (node.type()) {
      case pugi::node_element:
        return LookAtElement(node);
      case pugi::node_pcdata:
        if (OutsideRoot() && !IsBlank(node.value())) return "text outside the root element";
        return IsEscapedText(node.value()) ? nullptr : "a text";
      case pugi::node_cdata:
        if (OutsideRoot()) return "text outside the root element";
        return IsText(node.value()) ? nullptr : "a text";
      case pugi::node_doctype:
        return "a document type";
      case pugi::node_declaration:
        return OutsideRoot() && !node.previous_sibling() ? nullptr : "a declaration that is not the first";
      default:
        return nullptr;
    }
  }

  const char* LookAtElement(const pugi::xml_node& element) {
    if (OutsideRoot() && ++roots_ > 1) return "a second root element";
    if (++elements_ > kMaxElements) return "too many elements";
    if (!IsName(element.name())) return "a name of an element";
    return WhatIsWrongWithAttributes(element);
  }

  const char* wrong_ = nullptr;
  int roots_ = 0;
  int elements_ = 0;
};

}  // namespace

const char* WhatIsWrong(const pugi::xml_document& document) {
  Check check;
  // The walk has no way to change what it walks over, but takes it as if it had.
  pugi::xml_node top = document;
  top.traverse(check);
  return check.Wrong();
}
