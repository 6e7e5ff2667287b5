// Services that act on objects. Any thread; see engine.h. Most wait for the thread's turn, as setters are script code.
#ifndef SOREL_SERVICE_OBJECTS_H
#define SOREL_SERVICE_OBJECTS_H

#include "engine.h"

namespace sorel {

int32_t ServiceDefineMethod(void* object, const char* name, zq_NativeMethod method, uint32_t declared);
int32_t ServiceSetElement(void* array, uint32_t index, zq_Value* value);
int32_t ServiceSetProperty(void* object, const char* name, zq_Value* value);
// 0 when the object has no method of that name, or what it threw, which is printed, ended it.
int32_t ServiceCallMethod(void* object, const char* name, uint32_t argc, zq_Value* argv, zq_Value* rval);
int32_t ServiceCallMethodWithArgs(void* object, const char* name, uint32_t argc, zq_Value* argv);
int32_t ServiceSetPrivate(void* object, void** pointer);
int32_t ServiceGetPrivate(void* object, void** pointer);
int32_t ServiceSetFinalizer(void* object, zq_Finalizer finalizer);

}  // namespace sorel

#endif
