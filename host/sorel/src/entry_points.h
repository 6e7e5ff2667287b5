// C functions for the engine to call, one a native method: the engine's cheapest form of function carries no
// data, so that the method must be known by the function's address.
#ifndef SOREL_ENTRY_POINTS_H
#define SOREL_ENTRY_POINTS_H

#include "jsc.h"
#include "native_class.h"

namespace sorel {

// A function that calls `method`, or null when all are in use (kEntryPoints). Engine lock.
JSObjectCallAsFunctionCallback AssignEntryPoint(const NativeMethod* method);

}  // namespace sorel

#endif
