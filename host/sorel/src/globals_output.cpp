#include "errors.h"
#include "globals.h"
#include "js_text.h"
#include "output.h"
#include "properties.h"
#include "runtime.h"
#include "show.h"

namespace sorel {
namespace {

// The arguments as text with a blank between; false when one cannot be converted, and why in `exception`.
bool Join(JSContextRef context, size_t count, const JSValueRef arguments[], bool showObjects,
          std::string* line, JSValueRef* exception) {
  for (size_t i = 0; i < count; ++i) {
    std::string text;
    const bool hasOwnText =
        !JSValueIsObject(context, arguments[i]) && !JSValueIsSymbol(context, arguments[i]);
    if (showObjects && !hasOwnText) {
      text = Show(context, arguments[i]);
    } else if (!ToUtf8(context, arguments[i], &text, exception)) {
      return false;
    }
    if (i > 0) *line += ' ';
    *line += text;
  }
  return true;
}

// `kConsole`: objects are shown by their contents.
template <bool kConsole, bool kStderr>
JSValueRef Print(JSContextRef context, JSObjectRef, JSObjectRef, size_t count, const JSValueRef arguments[],
                 JSValueRef* exception) {
  // A script that caught what `exit` threw says no more.
  if (Runtime::Get().ExitRequested()) return Unwind(context, exception);
  std::string line;
  if (Join(context, count, arguments, kConsole, &line, exception)) WriteLine(line, kStderr);
  return JSValueMakeUndefined(context);
}

}  // namespace

void AddOutputGlobals(JSContextRef context, JSObjectRef global) {
  AddFunction(context, global, "print", Print<false, false>);
  JSObjectRef console = JSObjectMake(context, nullptr, nullptr);
  for (const char* name : {"log", "info", "debug"}) AddFunction(context, console, name, Print<true, false>);
  for (const char* name : {"warn", "error"}) AddFunction(context, console, name, Print<true, true>);
  SetProperty(context, global, "console", console, kJSPropertyAttributeDontEnum);
}

}  // namespace sorel
