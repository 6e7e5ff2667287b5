#include "runtime.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>

#include "script_turn.h"

namespace sorel {
namespace {

// How long a script computes before it is asked whether it should end: not felt by a person, nothing to the
// script.
constexpr double kLimitSeconds = 0.1;

}  // namespace

Runtime::Runtime()
    : wakeFd_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      context_(JSGlobalContextCreate(nullptr)),
      handles_(JSContextGetGroup(context_)) {
  JSGlobalContextSetIncludesNativeCallStackWhenReportingExceptions(context_, false);
  JSContextGroupAddHeapFinalizer(JSContextGetGroup(context_), AfterCollection, this);
  RestartLimit();
}

void Runtime::RequestExit(int status) {
  int running = kRunning;
  exitStatus_.compare_exchange_strong(running, status);
  g_turn.RefuseEntries();
  Wake();
}

void Runtime::RequestExitBySignal(int signal) {
  RequestExit(128 + signal);
}

void Runtime::RestartLimit() {
  limitElsewhere_.store(!OnScriptThread(), std::memory_order_relaxed);
  JSContextGroupSetExecutionTimeLimit(JSContextGetGroup(context_), kLimitSeconds, ShouldTerminate, this);
}

void Runtime::Wake() const {
  const uint64_t one = 1;
  // A full counter is readable already.
  if (write(wakeFd_, &one, sizeof one) < 0) return;
}

void Runtime::AfterCollection(JSContextGroupRef, void* self) {
  auto& runtime = *static_cast<Runtime*>(self);
  runtime.collected_.store(true);
  runtime.staleHandles_.store(true);
  runtime.Wake();
}

bool Runtime::ShouldTerminate(JSContextRef, void* self) {
  auto& runtime = *static_cast<Runtime*>(self);
  // Without a new limit the engine asks once for each entry, and a script that never leaves is never asked
  // again.
  runtime.RestartLimit();
  return runtime.ExitRequested();
}

}  // namespace sorel
