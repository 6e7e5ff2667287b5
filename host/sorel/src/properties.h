// Properties of script objects by C name. Engine lock.
#ifndef SOREL_PROPERTIES_H
#define SOREL_PROPERTIES_H

#include <string_view>

#include "jsc.h"

namespace sorel {

// False when the script's setter throws; what it threw is dropped.
bool SetProperty(JSContextRef context, JSObjectRef object, std::string_view name, JSValueRef value,
                 JSPropertyAttributes attributes = kJSPropertyAttributeNone);
// Undefined when there is none; null when its getter throws, and what it threw in `exception` when asked for.
JSValueRef GetProperty(JSContextRef context, JSObjectRef object, std::string_view name,
                       JSValueRef* exception = nullptr);
// Null when the property is no object.
JSObjectRef GetObjectProperty(JSContextRef context, JSObjectRef object, std::string_view name);
// An engine function of that name, as a property of the object. Null, and no property, when the engine
// refuses.
JSObjectRef AddFunction(JSContextRef context, JSObjectRef object, std::string_view name,
                        JSObjectCallAsFunctionCallback callback);

}  // namespace sorel

#endif
