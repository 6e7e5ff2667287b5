#include "service_objects.h"

#include <vector>

#include "errors.h"
#include "js_text.h"
#include "native_class.h"
#include "properties.h"
#include "runtime.h"
#include "scope.h"
#include "script_turn.h"
#include "values.h"

namespace sorel {
namespace {

// The values of argument words, kept alive. Engine lock.
class Arguments {
 public:
  explicit Arguments(JSContextRef context) : context_(context) {}
  Arguments(const Arguments&) = delete;
  Arguments& operator=(const Arguments&) = delete;
  ~Arguments() {
    for (JSValueRef value : values_) JSValueUnprotect(context_, value);
  }

  // False when a handle among them is out of date.
  bool Add(uint32_t count, const Word* words) {
    for (uint32_t i = 0; i < count; ++i) {
      JSValueRef value = nullptr;
      if (!ValueOf(context_, words[i], &value)) return false;
      JSValueProtect(context_, value);
      values_.push_back(value);
    }
    return true;
  }
  const std::vector<JSValueRef>& Values() const { return values_; }

 private:
  const JSContextRef context_;
  std::vector<JSValueRef> values_;
};

// Calls the object's method; null when it has none, or when it threw.
JSValueRef CallListener(JSContextRef context, JSObjectRef object, const char* name,
                        const std::vector<JSValueRef>& arguments) {
  JSValueRef thrown = nullptr;
  JSValueRef method = GetProperty(context, object, name, &thrown);
  JSValueRef result = nullptr;
  if (thrown == nullptr && JSValueIsObject(context, method)) {
    JSObjectRef function = JSValueToObject(context, method, nullptr);
    if (!JSObjectIsFunction(context, function)) return nullptr;
    result = JSObjectCallAsFunction(context, function, object, arguments.size(), arguments.data(), &thrown);
  }
  if (thrown != nullptr) ReportError(context, thrown);
  return thrown == nullptr ? result : nullptr;
}

}  // namespace

int32_t ServiceDefineMethod(void* object, const char* name, zq_NativeMethod method, uint32_t declared) {
  Runtime& runtime = Runtime::Get();
  const ScriptTurn turn;
  if (name == nullptr || method == nullptr || !runtime.Serves()) return 0;
  const EngineLock lock;
  JSObjectRef target = ObjectOf(runtime.Context(), WordOf(object));
  return target != nullptr && DefineMethod(target, name, method, declared) ? 1 : 0;
}

int32_t ServiceSetElement(void* array, uint32_t index, zq_Value* value) {
  Runtime& runtime = Runtime::Get();
  if (value == nullptr || !runtime.Serves()) return 0;
  Drafts* const drafts = Scope::DraftsInHand();
  if (drafts != nullptr && drafts->SetElement(WordOf(array), index, *value)) return 1;
  const ScriptTurn turn;
  if (!runtime.Serves()) return 0;
  const EngineLock lock;
  JSObjectRef target = ObjectOf(runtime.Context(), WordOf(array));
  JSValueRef element = nullptr;
  if (target == nullptr || !ValueOf(runtime.Context(), *value, &element)) return 0;
  JSValueRef thrown = nullptr;
  JSObjectSetPropertyAtIndex(runtime.Context(), target, index, element, &thrown);
  return thrown == nullptr ? 1 : 0;
}

int32_t ServiceSetProperty(void* object, const char* name, zq_Value* value) {
  Runtime& runtime = Runtime::Get();
  if (name == nullptr || value == nullptr || !runtime.Serves()) return 0;
  Drafts* const drafts = Scope::DraftsInHand();
  if (drafts != nullptr && drafts->SetProperty(WordOf(object), name, *value)) return 1;
  const ScriptTurn turn;
  if (!runtime.Serves()) return 0;
  const EngineLock lock;
  JSObjectRef target = ObjectOf(runtime.Context(), WordOf(object));
  JSValueRef property = nullptr;
  if (target == nullptr || !ValueOf(runtime.Context(), *value, &property)) return 0;
  return SetProperty(runtime.Context(), target, name, property) ? 1 : 0;
}

int32_t ServiceCallMethod(void* object, const char* name, uint32_t argc, zq_Value* argv, zq_Value* rval) {
  Runtime& runtime = Runtime::Get();
  const ScriptTurn turn;
  if (name == nullptr || (argc > 0 && argv == nullptr) || runtime.ExitRequested()) return 0;
  if (rval != nullptr) *rval = ZQ_VALUE_VOID;
  JSContextRef context = runtime.Context();
  const EngineLock lock;
  JSObjectRef target = ObjectOf(context, WordOf(object));
  if (target == nullptr) return 0;
  if (!OnScriptThread()) runtime.RestartLimit();
  Arguments arguments(context);
  if (!arguments.Add(argc, argv)) return 0;
  JSValueRef result = CallListener(context, target, name, arguments.Values());
  if (result == nullptr) return 0;
  if (rval != nullptr) *rval = WordOfProtected(context, Scope::Current(context), result);
  return 1;
}

int32_t ServiceCallMethodWithArgs(void* object, const char* name, uint32_t argc, zq_Value* argv) {
  return ServiceCallMethod(object, name, argc, argv, nullptr);
}

int32_t ServiceSetPrivate(void* object, void** pointer) {
  Runtime& runtime = Runtime::Get();
  if (pointer == nullptr || !runtime.Serves()) return 0;
  return runtime.Handles().SetPrivate(WordOf(object), *pointer) ? 1 : 0;
}

int32_t ServiceGetPrivate(void* object, void** pointer) {
  Runtime& runtime = Runtime::Get();
  if (pointer == nullptr || !runtime.Serves()) return 0;
  const Word handle = WordOf(object);
  // The object whose method runs, which is nearly always the one asked for, cannot go away meanwhile.
  const Scope* scope = Scope::Innermost();
  if (scope != nullptr && handle != 0 && scope->GetSelf().handle == handle) {
    const Attachment& attachment = *scope->GetSelf().attachment;
    if (!attachment.set.load(std::memory_order_acquire)) return 0;
    *pointer = attachment.pointer.load(std::memory_order_acquire);
    return 1;
  }
  return runtime.Handles().GetPrivate(handle, pointer) ? 1 : 0;
}

int32_t ServiceSetFinalizer(void* object, zq_Finalizer finalizer) {
  Runtime& runtime = Runtime::Get();
  return runtime.Serves() && runtime.Handles().SetFinalizer(WordOf(object), finalizer) ? 1 : 0;
}

}  // namespace sorel
