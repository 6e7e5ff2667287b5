#include "script_values.h"

#include <strings.h>

#include <cstring>

bool ScriptArguments::AllPresent(uint32_t count) const {
  for (uint32_t i = 0; i < count; ++i) {
    if (!Present(i)) return false;
  }
  return true;
}

namespace {

const char* TextOf(zq_Value value) {
  const auto toString = engine::ValueToString();
  if (toString == nullptr) return nullptr;
  uint32_t scratch = 0;
  return toString(value, &scratch);
}

// False when the host makes none.
bool MakeString(const char* text, zq_Value* value) {
  const auto newString = engine::NewString();
  if (newString == nullptr) return false;
  // The engine's lengths count the terminating NUL.
  return newString(text, static_cast<uint32_t>(std::strlen(text)) + 1, value) != 0;
}

}  // namespace

const char* ScriptArguments::Text(uint32_t index) const {
  return index < count_ ? TextOf(values_[index]) : nullptr;
}

const char* ScriptArguments::TextOrFiller(uint32_t index) const {
  return TextOf(Present(index) ? values_[index] : ZQ_VALUE_VOID);
}

bool SaysYes(const char* text) {
  return strcasecmp(text, "true") == 0 || strcasecmp(text, "yes") == 0;
}

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

void* NewScriptObject() {
  const auto newObject = engine::NewObject();
  return newObject != nullptr ? newObject() : nullptr;
}

void* ReturnNewObject(zq_Value* result) {
  void* const object = NewScriptObject();
  if (object != nullptr && result != nullptr) *result = ObjectValue(object);
  return object;
}
