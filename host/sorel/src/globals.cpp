#include "globals.h"

#include "script_timers.h"

namespace sorel {

void AddGlobals(JSContextRef context, JSObjectRef global) {
  AddOutputGlobals(context, global);
  AddProcessGlobals(context, global);
  AddTimerGlobals(context, global);
}

}  // namespace sorel
