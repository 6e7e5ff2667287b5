// Classes and methods that modules define, as scripts see them.
#ifndef SOREL_NATIVE_CLASS_H
#define SOREL_NATIVE_CLASS_H

#include <string>

#include "jsc.h"
#include "words.h"

namespace sorel {

// A native method and what is said when it fails. Lives as long as the process.
struct NativeMethod {
  zq_NativeMethod call;
  uint32_t declared;  // argument words that `call` finds at least; void where the script passed none
  bool isConstructor;
  std::string failure;  // "Class.method failed"
};

// Makes the class of that name, without constructor or methods, as a property of the global object. Returns
// its constructor function, kept alive for good; null when the engine refuses. Script thread.
JSObjectRef MakeClass(const std::string& name);
// Defines a method for the objects of a class, or on any other object. The method named "constructor" of a
// class is what `new` calls. False when the object is gone or the names run out. Engine lock.
bool DefineMethod(JSObjectRef object, const char* name, zq_NativeMethod method, uint32_t declared);
// One call of a native method by a script; its form is the engine's.
JSValueRef CallNative(const NativeMethod& method, JSContextRef context, JSObjectRef self, size_t count,
                      const JSValueRef arguments[], JSValueRef* exception);

}  // namespace sorel

#endif
