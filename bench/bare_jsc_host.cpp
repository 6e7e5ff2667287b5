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

JSValueRef MakeText(JSContextRef context, const char* bytes) {
  JSStringRef text = JSStringCreateWithUTF8CString(bytes);
  JSValueRef value = JSValueMakeString(context, text);
  JSStringRelease(text);
  return value;
}

JSValueRef Answer(JSContextRef context, JSObjectRef, JSObjectRef, size_t, const JSValueRef[], JSValueRef*) {
  return MakeText(context, "192.168.1.17");
}

// An array of as many records as the argument says, of seven properties each, as a list of networks has. The names of
// the properties are made once.
JSValueRef Networks(JSContextRef context, JSObjectRef, JSObjectRef, size_t, const JSValueRef arguments[],
                    JSValueRef*) {
  constexpr size_t kProperties = 7;
  static const char* const texts[kProperties] = {"Name",     "Signal",  "Encrypted", "Connected",
                                                 "AuthType", "EncType", "WPAType"};
  static JSStringRef names[kProperties];
  for (size_t i = 0; i < kProperties && names[i] == nullptr; ++i) {
    names[i] = JSStringCreateWithUTF8CString(texts[i]);
  }
  const auto count = static_cast<unsigned>(JSValueToNumber(context, arguments[0], nullptr));
  JSObjectRef array = JSObjectMakeArray(context, 0, nullptr, nullptr);
  for (unsigned i = 0; i < count; ++i) {
    JSObjectRef network = JSObjectMake(context, nullptr, nullptr);
    const JSValueRef values[kProperties] = {
        MakeText(context, ("Network " + std::to_string(i)).c_str()),
        JSValueMakeNumber(context, i),
        JSValueMakeNumber(context, 1),
        JSValueMakeNumber(context, 0),
        MakeText(context, "WPA-PSK"),
        MakeText(context, "TKIP+AES"),
        MakeText(context, "WPA2"),
    };
    for (size_t k = 0; k < kProperties; ++k) {
      JSObjectSetProperty(context, network, names[k], values[k], 0, nullptr);
    }
    JSObjectSetPropertyAtIndex(context, array, i, network, nullptr);
  }
  return array;
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
  SetFunction(context, device, "networks", Networks);
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
