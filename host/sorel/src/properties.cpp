#include "properties.h"

#include "js_text.h"

namespace sorel {

bool SetProperty(JSContextRef context, JSObjectRef object, std::string_view name, JSValueRef value,
                 JSPropertyAttributes attributes) {
  JSValueRef exception = nullptr;
  JSObjectSetProperty(context, object, JsText::Of(name).Get(), value, attributes, &exception);
  return exception == nullptr;
}

JSValueRef GetProperty(JSContextRef context, JSObjectRef object, std::string_view name,
                       JSValueRef* exception) {
  JSValueRef thrown = nullptr;
  JSValueRef value = JSObjectGetProperty(context, object, JsText::Of(name).Get(), &thrown);
  if (exception != nullptr) *exception = thrown;
  return thrown == nullptr ? value : nullptr;
}

JSObjectRef GetObjectProperty(JSContextRef context, JSObjectRef object, std::string_view name) {
  JSValueRef value = GetProperty(context, object, name);
  if (value == nullptr || !JSValueIsObject(context, value)) return nullptr;
  return JSValueToObject(context, value, nullptr);
}

JSObjectRef AddFunction(JSContextRef context, JSObjectRef object, std::string_view name,
                        JSObjectCallAsFunctionCallback callback) {
  JSObjectRef function = JSObjectMakeFunctionWithCallback(context, JsText::Of(name).Get(), callback);
  return SetProperty(context, object, name, function) ? function : nullptr;
}

}  // namespace sorel
