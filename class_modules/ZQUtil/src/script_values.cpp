#include "script_values.h"

#include <cstring>

bool ScriptArguments::AllPresent(uint32_t count) const {
  for (uint32_t i = 0; i < count; ++i) {
    if (!Present(i)) return false;
  }
  return true;
}

const char* ScriptArguments::Text(uint32_t index) const {
  const auto toString = engine::ValueToString();
  if (toString == nullptr || index >= count_) return nullptr;
  uint32_t scratch = 0;
  return toString(values_[index], &scratch);
}

namespace {

// False when the host makes none.
bool MakeString(const char* text, zq_Value* value) {
  const auto newString = engine::NewString();
  if (newString == nullptr) return false;
  // The engine's lengths count the terminating NUL.
  return newString(text, static_cast<uint32_t>(std::strlen(text)) + 1, value) != 0;
}

}  // namespace

void ReturnString(const char* text, zq_Value* result) {
  if (result != nullptr) MakeString(text, result);
}

void SetValueProperty(void* object, const char* name, zq_Value value) {
  if (const auto setProperty = engine::SetProperty()) setProperty(object, name, &value);
}

void SetTextProperty(void* object, const char* name, const char* text) {
  zq_Value value = ZQ_VALUE_VOID;
  if (MakeString(text != nullptr ? text : "", &value)) SetValueProperty(object, name, value);
}
