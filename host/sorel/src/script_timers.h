// The timers of scripts: setTimeout, setInterval and their clears. Any thread may set and clear, as listeners
// may run on any; they fire on the script thread.
#ifndef SOREL_SCRIPT_TIMERS_H
#define SOREL_SCRIPT_TIMERS_H

#include "jsc.h"
#include "timers.h"

namespace sorel {

void AddTimerGlobals(JSContextRef context, JSObjectRef global);
// Calls what is due by now, unless the host is asked to end. False when one threw, which is in `thrown`.
bool RunDueTimers(JSContextRef context, JSValueRef* thrown);
// kNever when no timer is set.
Instant NextTimerDue();

}  // namespace sorel

#endif
