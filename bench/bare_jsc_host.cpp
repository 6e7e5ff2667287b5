// The least that runs a script over JavaScriptCore with a native method: what sorel is measured against.
#include <JavaScriptCore/JavaScript.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

namespace {

void SetFunction(JSContextRef context, JSObjectRef object, const char* name,
                 JSObjectCallAsFunctionCallback function) {
  JSStringRef key = JSStringCreateWithUTF8CString(name);
  JSObjectSetProperty(context, object, key, JSObjectMakeFunctionWithCallback(context, key, function), 0,
                      nullptr);
  JSStringRelease(key);
}

JSValueRef Answer(JSContextRef context, JSObjectRef, JSObjectRef, size_t, const JSValueRef[], JSValueRef*) {
  JSStringRef text = JSStringCreateWithUTF8CString("192.168.1.17");
  JSValueRef value = JSValueMakeString(context, text);
  JSStringRelease(text);
  return value;
}

JSValueRef Print(JSContextRef context, JSObjectRef, JSObjectRef, size_t count, const JSValueRef arguments[],
                 JSValueRef*) {
  if (count > 0) printf("%g\n", JSValueToNumber(context, arguments[0], nullptr));
  return JSValueMakeUndefined(context);
}

}  // namespace

// bare_jsc_host SCRIPT [stay]
int main(int argc, char* argv[]) {
  JSGlobalContextRef context = JSGlobalContextCreate(nullptr);
  JSObjectRef global = JSContextGetGlobalObject(context);
  SetFunction(context, global, "print", Print);
  JSObjectRef device = JSObjectMake(context, nullptr, nullptr);
  SetFunction(context, device, "answer", Answer);
  JSStringRef name = JSStringCreateWithUTF8CString("device");
  JSObjectSetProperty(context, global, name, device, 0, nullptr);
  std::ifstream file(argv[1]);
  const std::string source{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  JSStringRef script = JSStringCreateWithUTF8CString(source.c_str());
  const bool worked = JSEvaluateScript(context, script, nullptr, nullptr, 1, nullptr) != nullptr;
  fflush(stdout);
  if (argc > 2) pause();
  return worked ? 0 : 1;
}
