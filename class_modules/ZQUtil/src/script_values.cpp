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

void ReturnString(const char* text, zq_Value* result) {
  const auto newString = engine::NewString();
  if (newString == nullptr || result == nullptr) return;
  // The engine's lengths count the terminating NUL.
  newString(text, static_cast<uint32_t>(std::strlen(text)) + 1, result);
}
