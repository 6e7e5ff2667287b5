// The one reader of a method's arguments and the one maker of its results.
#ifndef ZQUTIL_SCRIPT_VALUES_H
#define ZQUTIL_SCRIPT_VALUES_H

#include "mm_env.h"

// The arguments of one call. Texts belong to the engine and last until the method returns.
class ScriptArguments {
 public:
  ScriptArguments(uint32_t count, const zq_Value* values)
      : count_(values != nullptr ? count : 0), values_(values) {}

  uint32_t Count() const { return count_; }
  // Passed, and neither void nor null.
  bool Present(uint32_t index) const {
    return index < count_ && values_[index] != ZQ_VALUE_VOID && values_[index] != ZQ_VALUE_NULL;
  }
  // The arguments 0 .. count - 1 are all present.
  bool AllPresent(uint32_t count) const;
  // As the engine converts it; null when it was not passed, cannot be text, or the host converts none.
  const char* Text(uint32_t index) const;

 private:
  uint32_t count_;
  const zq_Value* values_;
};

// Stores a script string made of the text; nothing when the host makes none or the caller wants no result.
void ReturnString(const char* text, zq_Value* result);
inline void ReturnInteger(int32_t number, zq_Value* result) {
  if (result != nullptr) *result = ZQ_VALUE_FROM_INT(number);
}

#endif
