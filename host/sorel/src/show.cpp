#include "show.h"

#include "errors.h"
#include "js_text.h"
#include "properties.h"
#include "script.h"

namespace sorel {
namespace {

// Calls getters, as JSON would; whatever throws is shown as such.
constexpr const char* kShow = R"js((function(value, width) {
  const MOST_LEVELS = 32;
  const around = [];
  const typeOf = (object) => {
    const type = object.constructor;
    return typeof type === 'function' && type.name !== 'Object' && type.name !== 'Array' ? type.name : '';
  };
  const callable = (f) => `[${/^class\b/.test(Function.prototype.toString.call(f)) ? 'class' : 'function'}${
    typeof f.name === 'string' && f.name ? ' ' + f.name : ''}]`;
  const attempt = (read) => {
    try { return show(read()); } catch (error) { return '[throws]'; }
  };
  const elements = (object) => {
    if (object instanceof Map) return [...object].map(([key, each]) => `${show(key)} => ${show(each)}`);
    if (object instanceof Set) return [...object].map(show);
    if (Array.isArray(object) || (ArrayBuffer.isView(object) && 'length' in object))
      return Array.from(object, (_, index) => attempt(() => object[index]));
    return Object.keys(object).map((key) => `${JSON.stringify(key)}:${attempt(() => object[key])}`);
  };
  const showObject = (object) => {
    if (typeof object === 'function') return callable(object);
    if (object instanceof Error || object instanceof RegExp) return String(object);
    if (object instanceof Date) return 'Date ' + JSON.stringify(object);
    if (around.includes(object)) return '[circular]';
    if (around.length === MOST_LEVELS) return '[more]';
    around.push(object);
    try {
      const type = typeOf(object);
      const listed = Array.isArray(object) || ArrayBuffer.isView(object);
      const parts = elements(object);
      const [open, close] = listed ? '[]' : '{}';
      const line = open + parts.join() + close;
      const wide = around.length === 1 && parts.length > 1 && width > 0 && line.length > width;
      return (type && type + ' ') + (wide ? `${open}\n  ${parts.join(',\n  ')}\n${close}` : line);
    } finally {
      around.pop();
    }
  };
  const show = (each) => {
    if (typeof each === 'string') return JSON.stringify(each);
    if (typeof each === 'bigint') return each + 'n';
    if (Object.is(each, -0)) return '-0';
    return each !== null && (typeof each === 'object' || typeof each === 'function') ? showObject(each) : String(each);
  };
  return show(value);
}))js";

bool IsError(JSContextRef context, JSObjectRef object) {
  JSObjectRef type = GetObjectProperty(context, JSContextGetGlobalObject(context), "Error");
  return type != nullptr && JSValueIsInstanceOfConstructor(context, object, type, nullptr);
}

}  // namespace

std::string Show(JSContextRef context, JSValueRef value, size_t width) {
  if (JSValueIsObject(context, value) && IsError(context, JSValueToObject(context, value, nullptr)))
    return DescribeError(context, value);
  JSValueRef thrown = nullptr;
  JSValueRef function = Evaluate(context, {kShow, ""}, &thrown);
  JSValueRef arguments[] = {value, JSValueMakeNumber(context, static_cast<double>(width))};
  JSValueRef shown = function == nullptr
                         ? nullptr
                         : JSObjectCallAsFunction(context, JSValueToObject(context, function, nullptr),
                                                  nullptr, 2, arguments, &thrown);
  std::string text;
  if (shown != nullptr && thrown == nullptr && ToUtf8(context, shown, &text)) return text;
  return ToUtf8(context, value, &text) ? text : "[object]";
}

}  // namespace sorel
