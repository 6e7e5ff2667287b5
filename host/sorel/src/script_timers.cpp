#include "script_timers.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <mutex>
#include <vector>

#include "errors.h"
#include "properties.h"
#include "runtime.h"
#include "script_turn.h"
#include "zq_clock.h"

namespace sorel {
namespace {

// The function first, then its arguments; each protected.
using Call = std::vector<JSValueRef>;

struct ScriptTimers {
  std::mutex mutex;
  Timers timers;
  std::map<uint32_t, Call> calls;
};

ScriptTimers& All() {
  static auto& all = *new ScriptTimers;
  return all;
}

Instant Now() {
  return zq_ClockGet()->MonotonicNs();
}

void Unprotect(JSContextRef context, const Call& call) {
  for (JSValueRef value : call) JSValueUnprotect(context, value);
}

// Milliseconds as scripts give them; what is no number, or negative, is 1 as for browsers.
uint64_t DelayNs(JSContextRef context, size_t count, const JSValueRef arguments[]) {
  constexpr double kLongest = 2147483647;
  const double milliseconds = count > 1 ? JSValueToNumber(context, arguments[1], nullptr) : 0;
  if (!(milliseconds >= 1)) return 1000000;
  return static_cast<uint64_t>(std::min(milliseconds, kLongest) * 1e6);
}

JSValueRef Set(JSContextRef context, size_t count, const JSValueRef arguments[], JSValueRef* exception,
               bool repeats) {
  const bool callable = count > 0 && JSValueIsObject(context, arguments[0]) &&
                        JSObjectIsFunction(context, JSValueToObject(context, arguments[0], nullptr));
  if (!callable) {
    *exception = MakeError(context, "a timer needs a function to call");
    return JSValueMakeUndefined(context);
  }
  Call call{arguments[0]};
  if (count > 2) call.insert(call.end(), arguments + 2, arguments + count);
  for (JSValueRef value : call) JSValueProtect(context, value);
  const uint64_t delay = DelayNs(context, count, arguments);
  ScriptTimers& all = All();
  uint32_t id = 0;
  {
    const std::lock_guard lock(all.mutex);
    id = all.timers.Add(Now(), delay, repeats);
    all.calls[id] = std::move(call);
  }
  if (!OnScriptThread()) Runtime::Get().Wake();
  return JSValueMakeNumber(context, id);
}

JSValueRef SetTimeout(JSContextRef context, JSObjectRef, JSObjectRef, size_t count,
                      const JSValueRef arguments[], JSValueRef* exception) {
  return Set(context, count, arguments, exception, false);
}

JSValueRef SetInterval(JSContextRef context, JSObjectRef, JSObjectRef, size_t count,
                       const JSValueRef arguments[], JSValueRef* exception) {
  return Set(context, count, arguments, exception, true);
}

// Takes out the call of a timer; empty when there is none.
Call TakeCall(ScriptTimers& all, uint32_t id) {
  Call call;
  const auto found = all.calls.find(id);
  if (found == all.calls.end()) return call;
  call = std::move(found->second);
  all.calls.erase(found);
  return call;
}

JSValueRef Clear(JSContextRef context, JSObjectRef, JSObjectRef, size_t count, const JSValueRef arguments[],
                 JSValueRef*) {
  const double id = count > 0 ? JSValueToNumber(context, arguments[0], nullptr) : 0;
  Call call;
  if (id >= 1 && id <= UINT32_MAX) {
    ScriptTimers& all = All();
    const std::lock_guard lock(all.mutex);
    all.timers.Remove(static_cast<uint32_t>(id));
    call = TakeCall(all, static_cast<uint32_t>(id));
  }
  Unprotect(context, call);
  return JSValueMakeUndefined(context);
}

// The call of the timer that is due, protected once more for the caller; empty when nothing is due.
Call TakeDueCall(JSContextRef context, Instant now) {
  ScriptTimers& all = All();
  const std::lock_guard lock(all.mutex);
  const auto id = all.timers.TakeDue(now);
  if (!id) return {};
  if (!all.timers.Has(*id)) return TakeCall(all, *id);
  Call call = all.calls[*id];
  for (JSValueRef value : call) JSValueProtect(context, value);
  return call;
}

}  // namespace

void AddTimerGlobals(JSContextRef context, JSObjectRef global) {
  AddFunction(context, global, "setTimeout", SetTimeout);
  AddFunction(context, global, "setInterval", SetInterval);
  AddFunction(context, global, "clearTimeout", Clear);
  AddFunction(context, global, "clearInterval", Clear);
}

bool RunDueTimers(JSContextRef context, JSValueRef* thrown) {
  const Instant now = Now();
  while (NextTimerDue() <= now) {
    // First, as a listener may clear the timer while this waits.
    const ScriptTurn turn;
    if (Runtime::Get().ExitRequested()) break;
    const Call call = TakeDueCall(context, now);
    if (call.empty()) return true;
    *thrown = nullptr;
    JSObjectCallAsFunction(context, JSValueToObject(context, call[0], nullptr), nullptr, call.size() - 1,
                           call.data() + 1, thrown);
    Unprotect(context, call);
    if (*thrown != nullptr) return false;
  }
  return true;
}

Instant NextTimerDue() {
  ScriptTimers& all = All();
  const std::lock_guard lock(all.mutex);
  return all.timers.NextDue();
}

}  // namespace sorel
