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
  // The same; null also for void and null.
  const char* PresentText(uint32_t index) const { return Present(index) ? Text(index) : nullptr; }
  // The same; of one that is missing, or void or null, what the engine makes of void.
  const char* TextOrFiller(uint32_t index) const;

 private:
  uint32_t count_;
  const zq_Value* values_;
};

// "true" or "yes", in any case.
bool SaysYes(const char* text);

// Stores a script string made of the text; nothing when the host makes none or the caller wants no result.
void ReturnString(const char* text, zq_Value* result);
inline void ReturnInteger(int32_t number, zq_Value* result) {
  if (result != nullptr) *result = ZQ_VALUE_FROM_INT(number);
}

// Sets a property of an object; nothing when the host sets none. Any thread within a request.
void SetValueProperty(void* object, const char* name, zq_Value value);
// The same with a string made of the text, of "" for null; nothing when the host makes none.
void SetTextProperty(void* object, const char* name, const char* text);
// A new object without properties; null when the host makes none.
void* NewScriptObject();
// The word of an object's handle.
inline zq_Value ObjectValue(void* object) {
  return reinterpret_cast<zq_Value>(object);
}
// A new object, which is also the result; null, and no result, when the host makes none.
void* ReturnNewObject(zq_Value* result);

#endif
