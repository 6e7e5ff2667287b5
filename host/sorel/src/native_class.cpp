#include "native_class.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <memory>
#include <vector>

#include "entry_points.h"
#include "errors.h"
#include "js_text.h"
#include "properties.h"
#include "runtime.h"
#include "script_turn.h"
#include "values.h"

namespace sorel {
namespace {

// A constructor in the script's own language has everything that scripts expect of one: `new.target`,
// `extends`, `instanceof`, a name.
constexpr const char* kMakeClass = R"js((function(name) {
  let construct = null;
  const type = {[name]: function() {
    if (!new.target) throw new TypeError(name + " is a class: use new " + name + "()");
    if (!construct) throw new TypeError(name + " has no constructor");
    const made = construct.apply(this, arguments);
    return made === undefined ? this : made;
  }}[name];
  return [type, function(native) { construct = native; }];
}))js";

struct Class {
  std::string name;
  JSObjectRef setConstructor;
};

// By constructor function; touched while classes are defined only, under the engine's lock.
std::map<JSObjectRef, Class>& Classes() {
  static auto& classes = *new std::map<JSObjectRef, Class>;
  return classes;
}

JSValueRef Fail(JSContextRef context, const std::string& text, JSValueRef* exception) {
  *exception = MakeError(context, text);
  return JSValueMakeUndefined(context);
}

// Argument words on the stack, or on the heap when there are many.
class ArgumentWords {
 public:
  ArgumentWords(JSContextRef context, Scope& scope, size_t count, const JSValueRef values[], size_t least) {
    const size_t size = std::max(count, least);
    if (size > inline_.size()) {
      more_.resize(size);
      words_ = more_.data();
    }
    for (size_t i = 0; i < count; ++i) words_[i] = WordOfRooted(context, scope, values[i]);
    std::fill(words_ + count, words_ + size, ZQ_VALUE_VOID);
  }
  ArgumentWords(const ArgumentWords&) = delete;
  ArgumentWords& operator=(const ArgumentWords&) = delete;

  Word* Data() { return words_; }

 private:
  std::array<Word, 16> inline_;
  std::vector<Word> more_;
  Word* words_ = inline_.data();
};

Word HandleOfSelf(JSObjectRef self) {
  const EngineLock lock;
  return Runtime::Get().Handles().Of(self);
}

HandleTable::Self Construct(JSObjectRef self) {
  HandleTable& handles = Runtime::Get().Handles();
  {
    const EngineLock lock;
    handles.AddInstance(self);
  }
  return handles.FindInstance(self);
}

// Functions of the engine have the length 0, which no plain assignment changes.
void SetLength(JSContextRef context, JSObjectRef function, uint32_t length) {
  static const JSObjectRef define = [context]() -> JSObjectRef {
    JSObjectRef object = GetObjectProperty(context, Runtime::Get().Global(), "Object");
    JSObjectRef found = object != nullptr ? GetObjectProperty(context, object, "defineProperty") : nullptr;
    if (found != nullptr) JSValueProtect(context, found);
    return found;
  }();
  if (define == nullptr) return;
  JSObjectRef descriptor = JSObjectMake(context, nullptr, nullptr);
  SetProperty(context, descriptor, "value", JSValueMakeNumber(context, length));
  const JSValueRef arguments[] = {function, MakeJsValue(context, "length"), descriptor};
  JSObjectCallAsFunction(context, define, nullptr, std::size(arguments), arguments, nullptr);
}

}  // namespace

JSObjectRef MakeClass(const std::string& name) {
  JSContextRef context = Runtime::Get().Context();
  const ScriptTurn turn;
  const EngineLock lock;
  JSValueRef maker = JSEvaluateScript(context, JsText::Of(kMakeClass).Get(), nullptr, nullptr, 1, nullptr);
  if (maker == nullptr) return nullptr;
  JSValueRef argument = MakeJsValue(context, name);
  JSValueRef made = JSObjectCallAsFunction(context, JSValueToObject(context, maker, nullptr), nullptr, 1,
                                           &argument, nullptr);
  if (made == nullptr) return nullptr;
  JSObjectRef pair = JSValueToObject(context, made, nullptr);
  JSObjectRef constructor = GetObjectProperty(context, pair, "0");
  JSObjectRef setConstructor = GetObjectProperty(context, pair, "1");
  if (constructor == nullptr || setConstructor == nullptr) return nullptr;
  JSValueProtect(context, constructor);
  JSValueProtect(context, setConstructor);
  Classes()[constructor] = {name, setConstructor};
  if (!SetProperty(context, Runtime::Get().Global(), name, constructor, kJSPropertyAttributeDontEnum))
    return nullptr;
  return constructor;
}

bool DefineMethod(JSObjectRef object, const char* name, zq_NativeMethod method, uint32_t declared) {
  JSContextRef context = Runtime::Get().Context();
  const auto found = Classes().find(object);
  const bool ofClass = found != Classes().end();
  const bool isConstructor = ofClass && strcmp(name, "constructor") == 0;
  const std::string prefix = ofClass ? found->second.name + "." : "";
  // Kept for good, as its function may be: the engine does not tell when a function is dropped.
  const auto* record = new NativeMethod{method, declared, isConstructor, prefix + name + " failed"};
  const JSObjectCallAsFunctionCallback entry = AssignEntryPoint(record);
  if (entry == nullptr) {
    delete record;
    return false;
  }
  JSObjectRef function = JSObjectMakeFunctionWithCallback(context, JsText::Of(name).Get(), entry);
  if (declared != 0) SetLength(context, function, declared);
  if (isConstructor) {
    JSValueRef argument = function;
    return JSObjectCallAsFunction(context, found->second.setConstructor, nullptr, 1, &argument, nullptr) !=
           nullptr;
  }
  JSObjectRef target = ofClass ? GetObjectProperty(context, object, "prototype") : object;
  return target != nullptr && SetProperty(context, target, name, function, kJSPropertyAttributeDontEnum);
}

JSValueRef CallNative(const NativeMethod& method, JSContextRef context, JSObjectRef self, size_t count,
                      const JSValueRef arguments[], JSValueRef* exception) {
  Runtime& runtime = Runtime::Get();
  if (runtime.ExitRequested()) return Unwind(context, exception);
  const HandleTable::Self known =
      method.isConstructor ? Construct(self) : runtime.Handles().FindInstance(self);
  const Word handle = known.handle != 0 ? known.handle : HandleOfSelf(self);
  JSValueRef result = nullptr;
  {
    Scope scope(context, known);
    ArgumentWords words(context, scope, count, arguments, method.declared);
    Word answer = ZQ_VALUE_VOID;
    int32_t handled = 0;
    {
      const TurnPause pause;
      handled = method.call(PointerOf(handle), static_cast<uint32_t>(count), words.Data(), &answer);
    }
    if (handled == 0 || !ValueOf(context, answer, &result)) result = nullptr;
  }
  runtime.RestoreLimit();
  if (runtime.ExitRequested()) return Unwind(context, exception);
  return result != nullptr ? result : Fail(context, method.failure, exception);
}

}  // namespace sorel
