// The seam between a script engine's host and a class module: machine words, one table of services, one
// native method signature, entry points. Plain C, no code: hosts and modules share nothing else.
#ifndef ZQ_ENGINE_H
#define ZQ_ENGINE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// A script value is one machine word.
//   void     ZQ_VALUE_VOID: no value, a missing argument
//   null     ZQ_VALUE_NULL
//   integer  ZQ_VALUE_FROM_INT(n): n shifted left by one with the low bit set, a 32-bit word, zero-extended
//   object   the object's handle, a pointer
//   string   a pointer that the engine gave out (NewString): valid until the native method that got it returns,
//            or, on a thread of a module's own, until its EndRequest
typedef uintptr_t zq_Value;

#define ZQ_VALUE_VOID ((zq_Value)0x80000001U)
#define ZQ_VALUE_NULL ((zq_Value)0)
#define ZQ_VALUE_FROM_INT(n) ((zq_Value)(uint32_t)(((uint32_t)(n) << 1) | 1U))

// A native method or constructor. `rval` may be null; a method that stores nothing there answers void.
// Returns 1: handled; 0: failure, reported to the script as an exception.
typedef int32_t (*zq_NativeMethod)(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
// Called once, on the script thread, after the script object was collected. `self` is its handle, no longer
// usable.
typedef int32_t (*zq_Finalizer)(void* self);

typedef int32_t (*zq_DefineMethod)(void* object, const char* name, zq_NativeMethod method, uint32_t declared);
// 1 on success; 0 and the integer untouched when the value is no number.
typedef int32_t (*zq_ValueToInt)(zq_Value value, int32_t* integer);
// 1 on success; 0 and the handle untouched when the value is no object.
typedef int32_t (*zq_ValueToObject)(zq_Value value, void** object);
// What a native method, or a thread within a request, makes with NewArray and NewObject is its own thread's alone until
// the method has returned it, or it was handed to a listener or to an object that was there before.
//
// A new empty array, or null. `length` 0 and `elements` null are what modules pass.
typedef void* (*zq_NewArray)(uint32_t length, zq_Value* elements);
typedef int32_t (*zq_SetElement)(void* array, uint32_t index, zq_Value* value);
// NUL-terminated UTF-8 owned by the engine, valid until the native method returns; null when the value cannot
// be text. `scratch` is a word zeroed by the caller, for the engine's own use.
typedef const char* (*zq_ValueToString)(zq_Value value, uint32_t* scratch);
// `length` counts the terminating NUL: "YES" is passed with 4.
typedef int32_t (*zq_NewString)(const char* bytes, uint32_t length, zq_Value* value);
typedef void* (*zq_NewObject)(void);
typedef int32_t (*zq_SetProperty)(void* object, const char* name, zq_Value* value);
typedef int32_t (*zq_CallMethod)(void* object, const char* name, uint32_t argc, zq_Value* argv,
                                 zq_Value* rval);
typedef int32_t (*zq_CallMethodWithArgs)(void* object, const char* name, uint32_t argc, zq_Value* argv);
// Both return 1 on success. The pointer is the module's; the engine never looks behind it.
typedef int32_t (*zq_SetPrivate)(void* object, void** pointer);
typedef int32_t (*zq_GetPrivate)(void* object, void** pointer);
typedef int32_t (*zq_SetFinalizer)(void* object, zq_Finalizer finalizer);
// Bracket the use of services by a thread other than the script thread.
typedef void (*zq_BeginRequest)(void* classObject);
typedef void (*zq_EndRequest)(void* classObject);
typedef void (*zq_HostLog)(const char* text);

// Slots of the service table, an array of machine words. A slot that a host lacks is null or beyond its
// length.
enum zq_EngineSlot {
  ZQ_SLOT_CLASS_OBJECT = 0,  // not a function: the object on which the class is defined
  ZQ_SLOT_DEFINE_METHOD = 3,
  ZQ_SLOT_VALUE_TO_INT = 6,
  ZQ_SLOT_VALUE_TO_OBJECT = 9,
  ZQ_SLOT_NEW_ARRAY = 14,
  ZQ_SLOT_SET_ELEMENT = 19,
  ZQ_SLOT_VALUE_TO_STRING = 20,
  ZQ_SLOT_NEW_STRING = 21,
  ZQ_SLOT_NEW_OBJECT = 22,
  ZQ_SLOT_SET_PROPERTY = 24,
  ZQ_SLOT_CALL_METHOD = 25,
  ZQ_SLOT_CALL_METHOD_WITH_ARGS = 26,
  ZQ_SLOT_SET_PRIVATE = 27,
  ZQ_SLOT_GET_PRIVATE = 28,
  ZQ_SLOT_SET_FINALIZER = 29,
  ZQ_SLOT_BEGIN_REQUEST = 30,
  ZQ_SLOT_END_REQUEST = 31,
  ZQ_SLOT_HOST_LOG = 35,
  ZQ_ENGINE_SLOTS = 41
};

// Entry points of a class module, in the order in which a host calls them, all on the script thread:
// MM_Load, MM_InitWrapper, (scripts run), MM_TermWrapper, MM_Unload.
typedef void (*zq_MM_Load)(void);
typedef void (*zq_MM_Unload)(void);
// `table` is an array of machine words, `bytes` its length. The module copies what it uses.
typedef int32_t (*zq_MM_InitWrapper)(void* table, uint32_t bytes);
typedef int32_t (*zq_MM_TermWrapper)(void);

#ifdef __cplusplus
}
#endif

#endif
