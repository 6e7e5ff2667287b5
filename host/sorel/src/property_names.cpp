#include "property_names.h"

#include <cstring>

#include "js_text.h"

namespace sorel {

uint32_t PropertyNames::NumberOf(const char* name) {
  const auto address = reinterpret_cast<uintptr_t>(name);
  Recent& recent = recent_[(address ^ (address >> 8)) % recent_.size()];
  if (recent.address == name && strcmp(names_[recent.number].text.c_str(), name) == 0) return recent.number;
  const auto known = numbers_.find(name);
  if (known == numbers_.end() && names_.size() == kMost) return kNone;
  uint32_t number = 0;
  if (known != numbers_.end()) {
    number = known->second;
  } else {
    number = static_cast<uint32_t>(names_.size());
    names_.push_back({name, nullptr});
    numbers_.emplace(name, number);
  }
  recent = {name, number};
  return number;
}

JSValueRef PropertyNames::Key(JSContextRef context, uint32_t number) {
  Name& name = names_[number];
  if (name.key == nullptr) {
    name.key = MakeJsValue(context, name.text);
    JSValueProtect(context, name.key);
  }
  return name.key;
}

}  // namespace sorel
