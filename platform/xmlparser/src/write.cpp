#include <new>
#include <string>

#include "document.h"
#include "xml_text.h"

namespace {

// Collects what the library writes. Grows by exceptions, which must not cross the library's frames.
class Collector : public pugi::xml_writer {
 public:
  void write(const void* data, size_t size) override {
    try {
      bytes_.append(static_cast<const char*>(data), size);
    } catch (const std::bad_alloc&) {
      whole_ = false;
    }
  }
  bool Whole() const { return whole_; }
  const std::string& Bytes() const { return bytes_; }

 private:
  std::string bytes_;
  bool whole_ = true;
};

bool IsNameText(const char* name) {
  return name != nullptr && IsName(name);
}

}  // namespace

dom_Document* dom__create(const char* rootName, const char* /*file*/, int /*line*/) {
  if (!IsNameText(rootName)) return nullptr;
  auto* document = new (std::nothrow) dom_Document;
  if (document == nullptr) return nullptr;
  if (pugi::xml_node root = document->tree.append_child(pugi::node_element)) {
    if (root.set_name(rootName)) return document;
  }
  delete document;
  return nullptr;
}

dom_Element* dom_AddChild(dom_Element* element, const char* name) {
  if (element == nullptr || !IsNameText(name)) return nullptr;
  pugi::xml_node parent = NodeOf(element);
  pugi::xml_node child = parent.append_child(pugi::node_element);
  if (child && child.set_name(name)) return ElementOf(child);
  parent.remove_child(child);
  return nullptr;
}

bool dom_SetAttribute(dom_Element* element, const char* name, const char* text) {
  if (element == nullptr || !IsNameText(name) || text == nullptr || !IsText(text)) return false;
  pugi::xml_node node = NodeOf(element);
  pugi::xml_attribute attribute = node.attribute(name);
  const bool isNew = !attribute;
  if (isNew) {
    attribute = node.append_attribute(name);
    // Out of memory the library leaves an attribute without its name.
    if (attribute && *attribute.name() == '\0') {
      node.remove_attribute(attribute);
      return false;
    }
  }
  if (attribute && attribute.set_value(text)) return true;
  if (isNew) node.remove_attribute(attribute);
  return false;
}

bool dom_SetIntegerAttribute(dom_Element* element, const char* name, int32_t value) {
  return dom_SetAttribute(element, name, std::to_string(value).c_str());
}

bool dom_Serialise(const dom_Element* element, _ZqString* text) {
  if (element == nullptr || text == nullptr) return false;
  Collector collector;
  NodeOf(element).print(collector, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
  return collector.Whole() && zq_StringAppendBytes(text, collector.Bytes().data(), collector.Bytes().size());
}
