// JavaScriptCore's C API, with the calls that the library exports and its public headers leave out.
#ifndef SOREL_JSC_H
#define SOREL_JSC_H

#include <JavaScriptCore/JavaScript.h>

// For functions whose local arrays hold the engine's values: the collector looks for values on the stack, and the
// address sanitizer puts arrays elsewhere.
#define SOREL_VALUES_ON_STACK [[gnu::no_sanitize_address]]

extern "C" {

// The engine's lock, recursive; what a native callback finds dropped.
void JSLock(JSContextRef context);
void JSUnlock(JSContextRef context);

// A full collection that has swept when it returns.
void JSSynchronousGarbageCollectForDebugging(JSContextRef context);
// Called at the end of each collection, by any thread, before scripts run on.
typedef void (*JSHeapFinalizer)(JSContextGroupRef group, void* data);
void JSContextGroupAddHeapFinalizer(JSContextGroupRef group, JSHeapFinalizer finalizer, void* data);

typedef struct OpaqueJSWeak* JSWeakRef;
JSWeakRef JSWeakCreate(JSContextGroupRef group, JSObjectRef object);
// Null once the object was collected.
JSObjectRef JSWeakGetObject(JSWeakRef weak);
void JSWeakRelease(JSContextGroupRef group, JSWeakRef weak);

// `callback` is asked after each `seconds` of processor time that a script runs on; true ends the script.
typedef bool (*JSShouldTerminateCallback)(JSContextRef context, void* data);
void JSContextGroupSetExecutionTimeLimit(JSContextGroupRef group, double seconds,
                                         JSShouldTerminateCallback callback, void* data);

// Whether an exception that leaves a call of this API costs a walk over the stack of native functions and the look-up of
// their names, for an inspector.
void JSGlobalContextSetIncludesNativeCallStackWhenReportingExceptions(JSGlobalContextRef context,
                                                                      bool included);

// `function` is called with a rejected promise that nobody handles, and its reason.
void JSGlobalContextSetUnhandledRejectionCallback(JSGlobalContextRef context, JSObjectRef function,
                                                  JSValueRef* exception);

}  // extern "C"

#endif
