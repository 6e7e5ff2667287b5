// The functions that every script finds: print, console, timers, load, exit, gc.
#ifndef SOREL_GLOBALS_H
#define SOREL_GLOBALS_H

#include "jsc.h"

namespace sorel {

void AddGlobals(JSContextRef context, JSObjectRef global);
void AddOutputGlobals(JSContextRef context, JSObjectRef global);
void AddProcessGlobals(JSContextRef context, JSObjectRef global);

}  // namespace sorel

#endif
