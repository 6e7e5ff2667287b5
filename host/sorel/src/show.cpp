#include "show.h"

#include "errors.h"
#include "js_text.h"
#include "properties.h"

namespace sorel {
namespace {

std::string NameOf(JSContextRef context, JSObjectRef object) {
  JSValueRef name = GetProperty(context, object, "name");
  std::string text;
  if (name == nullptr || !JSValueIsString(context, name)) return text;
  return ToUtf8(context, name, &text) ? text : std::string();
}

std::string ShowFunction(JSContextRef context, JSObjectRef function) {
  const std::string name = NameOf(context, function);
  return name.empty() ? "[function]" : "[function " + name + "]";
}

bool IsError(JSContextRef context, JSObjectRef object) {
  JSObjectRef type = GetObjectProperty(context, JSContextGetGlobalObject(context), "Error");
  return type != nullptr && JSValueIsInstanceOfConstructor(context, object, type, nullptr);
}

std::string ShowObject(JSContextRef context, JSObjectRef object) {
  if (JSObjectIsFunction(context, object)) return ShowFunction(context, object);
  if (IsError(context, object)) return DescribeError(context, object);
  JSObjectRef constructor = GetObjectProperty(context, object, "constructor");
  const std::string type = constructor != nullptr ? NameOf(context, constructor) : "";
  const JsText json(JSValueCreateJSONString(context, object, 0, nullptr));
  const bool plain = type.empty() || type == "Object" || type == "Array";
  if (json.Get() != nullptr && JSStringGetLength(json.Get()) > 0) {
    return plain ? ToUtf8(json.Get()) : type + " " + ToUtf8(json.Get());
  }
  std::string text;
  return ToUtf8(context, object, &text) ? text : "[object]";
}

}  // namespace

std::string Show(JSContextRef context, JSValueRef value) {
  if (JSValueIsString(context, value)) {
    const JsText json(JSValueCreateJSONString(context, value, 0, nullptr));
    if (json.Get() != nullptr) return ToUtf8(json.Get());
  }
  if (JSValueIsObject(context, value)) return ShowObject(context, JSValueToObject(context, value, nullptr));
  if (JSValueIsSymbol(context, value)) return "[symbol]";
  std::string text;
  return ToUtf8(context, value, &text) ? text : "[value]";
}

}  // namespace sorel
