#include "errors.h"
#include "globals.h"
#include "js_text.h"
#include "properties.h"
#include "runtime.h"
#include "script.h"

namespace sorel {
namespace {

// The name of the script from which a native function is called; "" for none.
std::string CallerOf(JSContextRef context) {
  // An error knows where it was made, which is the engine's only public answer to the question.
  JSObjectRef error = JSObjectMakeError(context, 0, nullptr, nullptr);
  JSValueRef name = GetProperty(context, error, "sourceURL");
  std::string text;
  if (name == nullptr || !JSValueIsString(context, name) || !ToUtf8(context, name, &text)) return "";
  return text;
}

JSValueRef Load(JSContextRef context, JSObjectRef, JSObjectRef, size_t count, const JSValueRef arguments[],
                JSValueRef* exception) {
  std::string path;
  if (count == 0) {
    *exception = MakeError(context, "load needs the path of a script");
  } else if (ToUtf8(context, arguments[0], &path, exception)) {
    ScriptText script;
    std::string error;
    if (!ReadScript(ResolveScript(path, CallerOf(context)), &script, &error)) {
      *exception = MakeError(context, error);
    } else if (JSValueRef value = Evaluate(context, script, exception)) {
      return value;
    }
  }
  return JSValueMakeUndefined(context);
}

JSValueRef Exit(JSContextRef context, JSObjectRef, JSObjectRef, size_t count, const JSValueRef arguments[],
                JSValueRef* exception) {
  const bool given = count > 0 && !JSValueIsUndefined(context, arguments[0]);
  const double status = given ? JSValueToNumber(context, arguments[0], nullptr) : 0;
  // The status of a process is a byte.
  Runtime::Get().RequestExit(status >= 0 && status <= 255 ? static_cast<int>(status) : 1);
  return Unwind(context, exception);
}

JSValueRef CollectGarbage(JSContextRef context, JSObjectRef, JSObjectRef, size_t, const JSValueRef[],
                          JSValueRef*) {
  JSSynchronousGarbageCollectForDebugging(context);
  return JSValueMakeUndefined(context);
}

}  // namespace

void AddProcessGlobals(JSContextRef context, JSObjectRef global) {
  AddFunction(context, global, "load", Load);
  AddFunction(context, global, "exit", Exit);
  AddFunction(context, global, "gc", CollectGarbage);
}

}  // namespace sorel
