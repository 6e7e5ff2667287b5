// The module's copy of the host's service table, and each service by name.
//
// A service that the host lacks reads as null; callers test it and skip the call. The table is written by
// MM_InitWrapper on the script thread before the module has any other thread, and only read after that.
#ifndef ZQUTIL_MM_ENV_H
#define ZQUTIL_MM_ENV_H

#include "engine.h"

extern uintptr_t mmEnv[ZQ_ENGINE_SLOTS];

// The class object, as MM_Init got it: methods are defined on it, listeners are kept alive as its properties,
// and worker threads bracket their calls with it. The engine owns it.
extern void* gLibObj;

namespace engine {

template <typename Service>
Service Slot(zq_EngineSlot slot) {
  return reinterpret_cast<Service>(mmEnv[slot]);
}

inline zq_DefineMethod DefineMethod() {
  return Slot<zq_DefineMethod>(ZQ_SLOT_DEFINE_METHOD);
}
inline zq_ValueToInt ValueToInt() {
  return Slot<zq_ValueToInt>(ZQ_SLOT_VALUE_TO_INT);
}
inline zq_ValueToObject ValueToObject() {
  return Slot<zq_ValueToObject>(ZQ_SLOT_VALUE_TO_OBJECT);
}
inline zq_NewArray NewArray() {
  return Slot<zq_NewArray>(ZQ_SLOT_NEW_ARRAY);
}
inline zq_SetElement SetElement() {
  return Slot<zq_SetElement>(ZQ_SLOT_SET_ELEMENT);
}
inline zq_ValueToString ValueToString() {
  return Slot<zq_ValueToString>(ZQ_SLOT_VALUE_TO_STRING);
}
inline zq_NewString NewString() {
  return Slot<zq_NewString>(ZQ_SLOT_NEW_STRING);
}
inline zq_NewObject NewObject() {
  return Slot<zq_NewObject>(ZQ_SLOT_NEW_OBJECT);
}
inline zq_SetProperty SetProperty() {
  return Slot<zq_SetProperty>(ZQ_SLOT_SET_PROPERTY);
}
inline zq_CallMethod CallMethod() {
  return Slot<zq_CallMethod>(ZQ_SLOT_CALL_METHOD);
}
inline zq_CallMethodWithArgs CallMethodWithArgs() {
  return Slot<zq_CallMethodWithArgs>(ZQ_SLOT_CALL_METHOD_WITH_ARGS);
}
inline zq_SetPrivate SetPrivate() {
  return Slot<zq_SetPrivate>(ZQ_SLOT_SET_PRIVATE);
}
inline zq_GetPrivate GetPrivate() {
  return Slot<zq_GetPrivate>(ZQ_SLOT_GET_PRIVATE);
}
inline zq_SetFinalizer SetFinalizer() {
  return Slot<zq_SetFinalizer>(ZQ_SLOT_SET_FINALIZER);
}
inline zq_BeginRequest BeginRequest() {
  return Slot<zq_BeginRequest>(ZQ_SLOT_BEGIN_REQUEST);
}
inline zq_EndRequest EndRequest() {
  return Slot<zq_EndRequest>(ZQ_SLOT_END_REQUEST);
}

// Writes a line to the host's log; silent when the host has none.
void HostLog(const char* text);

}  // namespace engine

#endif
