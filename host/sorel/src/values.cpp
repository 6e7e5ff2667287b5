#include "values.h"

#include "runtime.h"
#include "text_values.h"

namespace sorel {
namespace {

// True, and the word, for values that need no handle.
bool Immediate(JSContextRef context, JSValueRef value, Word* word) {
  switch (JSValueGetType(context, value)) {
    case kJSTypeUndefined:
      *word = ZQ_VALUE_VOID;
      return true;
    case kJSTypeNull:
      *word = ZQ_VALUE_NULL;
      return true;
    case kJSTypeNumber: {
      const double number = JSValueToNumber(context, value, nullptr);
      if (!FitsInt(number)) return false;
      *word = ZQ_VALUE_FROM_INT(static_cast<int32_t>(number));
      return true;
    }
    default:
      return false;
  }
}

}  // namespace

Word WordOfRooted(JSContextRef context, Scope& scope, JSValueRef value) {
  Word word = ZQ_VALUE_VOID;
  return Immediate(context, value, &word) ? word : scope.AddRooted(value);
}

Word WordOfProtected(JSContextRef context, Scope& scope, JSValueRef value) {
  Word word = ZQ_VALUE_VOID;
  return Immediate(context, value, &word) ? word : scope.AddProtected(value);
}

bool ValueOf(JSContextRef context, Word word, JSValueRef* value) {
  if (IsScopedHandle(word)) {
    const Scope::Entry* entry = Scope::Find(word);
    if (entry == nullptr) return false;
    *value = entry->value != nullptr ? entry->value : ValueOfText(context, entry->text, entry->length);
    return true;
  }
  if (word == ZQ_VALUE_VOID) {
    *value = JSValueMakeUndefined(context);
  } else if (word == ZQ_VALUE_NULL) {
    *value = JSValueMakeNull(context);
  } else if (IsInt(word)) {
    *value = JSValueMakeNumber(context, ToInt(word));
  } else if (IsObjectHandle(word)) {
    *value = ObjectOf(context, word);
  } else {
    return false;
  }
  return *value != nullptr;
}

JSObjectRef ObjectOf(JSContextRef context, Word word) {
  if (IsObjectHandle(word)) {
    Scope::SettleDraft(word);
    return Runtime::Get().Handles().Object(word);
  }
  if (!IsScopedHandle(word)) return nullptr;
  const Scope::Entry* entry = Scope::Find(word);
  if (entry == nullptr || entry->value == nullptr || !JSValueIsObject(context, entry->value)) return nullptr;
  return JSValueToObject(context, entry->value, nullptr);
}

}  // namespace sorel
