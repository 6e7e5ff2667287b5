#include "service_values.h"

#include <cmath>
#include <cstring>
#include <vector>

#include "js_text.h"
#include "runtime.h"
#include "scope.h"
#include "script_turn.h"
#include "values.h"

namespace sorel {
namespace {

// The handle of an object just made, which the scope keeps alive until the module put it somewhere.
void* HandleOfNew(JSContextRef context, JSObjectRef object) {
  Scope::Current(context).Protect(object);
  return PointerOf(Runtime::Get().Handles().Of(object));
}

// The bytes in the form that modules get: they end at the first NUL.
const char* KeepText(JSContextRef context, const std::string& text) {
  return Scope::Current(context).AddText(text.data(), strlen(text.c_str()));
}

}  // namespace

int32_t ServiceValueToInt(zq_Value value, int32_t* integer) {
  if (IsInt(value)) {
    *integer = ToInt(value);
    return 1;
  }
  Runtime& runtime = Runtime::Get();
  if (!IsScopedHandle(value) || !runtime.Serves()) return 0;
  const EngineLock lock;
  JSContextRef context = runtime.Context();
  JSValueRef found = nullptr;
  if (!ValueOf(context, value, &found)) return 0;
  if (JSValueIsBoolean(context, found)) {
    *integer = JSValueToBoolean(context, found) ? 1 : 0;
    return 1;
  }
  if (!JSValueIsNumber(context, found)) return 0;
  const double number = std::trunc(JSValueToNumber(context, found, nullptr));
  if (!(number >= INT32_MIN && number <= INT32_MAX)) return 0;
  *integer = static_cast<int32_t>(number);
  return 1;
}

int32_t ServiceValueToObject(zq_Value value, void** object) {
  Runtime& runtime = Runtime::Get();
  // A draft becomes an object, which may have setters of the script's.
  const ScriptTurn turn;
  if (!runtime.Serves() || (!IsScopedHandle(value) && !IsObjectHandle(value))) return 0;
  const EngineLock lock;
  JSObjectRef found = ObjectOf(runtime.Context(), value);
  const Word handle = found != nullptr ? runtime.Handles().Of(found) : 0;
  if (handle == 0) return 0;
  *object = PointerOf(handle);
  return 1;
}

const char* ServiceValueToString(zq_Value value, uint32_t*) {
  Runtime& runtime = Runtime::Get();
  // An object's text is what its own toString says.
  const ScriptTurn turn;
  if (!runtime.Serves()) return nullptr;
  JSContextRef context = runtime.Context();
  const EngineLock lock;
  JSValueRef found = nullptr;
  std::string text;
  if (!ValueOf(context, value, &found) || !ToUtf8(context, found, &text)) return nullptr;
  return KeepText(context, text);
}

int32_t ServiceNewString(const char* bytes, uint32_t length, zq_Value* value) {
  Runtime& runtime = Runtime::Get();
  if (bytes == nullptr || value == nullptr || !runtime.Serves()) return 0;
  // `length` counts the NUL behind the text; a length of 0 has none.
  const size_t before = length == 0 ? 0 : strnlen(bytes, length - 1);
  *value = Scope::Current(runtime.Context()).AddString(bytes, static_cast<uint32_t>(before));
  return 1;
}

void* ServiceNewArray(uint32_t length, zq_Value* elements) {
  Runtime& runtime = Runtime::Get();
  if (!runtime.Serves()) return nullptr;
  Drafts* const drafts = elements == nullptr ? Scope::NewDrafts() : nullptr;
  if (drafts != nullptr) return PointerOf(drafts->Add(true));
  const ScriptTurn turn;
  if (!runtime.Serves()) return nullptr;
  JSContextRef context = runtime.Context();
  const EngineLock lock;
  JSObjectRef array = JSObjectMakeArray(context, 0, nullptr, nullptr);
  if (array == nullptr) return nullptr;
  for (uint32_t i = 0; elements != nullptr && i < length; ++i) {
    JSValueRef element = nullptr;
    if (!ValueOf(context, elements[i], &element)) return nullptr;
    JSObjectSetPropertyAtIndex(context, array, i, element, nullptr);
  }
  return HandleOfNew(context, array);
}

void* ServiceNewObject() {
  Runtime& runtime = Runtime::Get();
  if (!runtime.Serves()) return nullptr;
  if (Drafts* const drafts = Scope::NewDrafts()) return PointerOf(drafts->Add(false));
  const EngineLock lock;
  return HandleOfNew(runtime.Context(), JSObjectMake(runtime.Context(), nullptr, nullptr));
}

}  // namespace sorel
