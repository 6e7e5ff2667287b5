#include "runtime.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>

namespace sorel {
namespace {

// How long a script computes before it is asked whether it should end: not felt by a person, nothing to the script.
constexpr double kTermSeconds = 0.1;
constexpr double kAtOnceSeconds = 0.0001;

}  // namespace

Runtime& Runtime::Get() {
  static Runtime& runtime = *new Runtime;
  return runtime;
}

Runtime::Runtime()
    : wakeFd_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      context_(JSGlobalContextCreate(nullptr)),
      handles_(JSContextGetGroup(context_)) {
  JSContextGroupAddHeapFinalizer(JSContextGetGroup(context_), AfterCollection, this);
  JSContextGroupSetExecutionTimeLimit(JSContextGetGroup(context_), kTermSeconds, ShouldTerminate, this);
}

void Runtime::RequestExit(int status) {
  int running = kRunning;
  exitStatus_.compare_exchange_strong(running, status);
  Wake();
}

void Runtime::RequestExitBySignal(int signal) { RequestExit(128 + signal); }

void Runtime::InterruptScript() {
  JSContextGroupSetExecutionTimeLimit(JSContextGetGroup(context_), kAtOnceSeconds, ShouldTerminate, this);
}

void Runtime::Wake() const {
  const uint64_t one = 1;
  // A full counter is readable already.
  if (write(wakeFd_, &one, sizeof one) < 0) return;
}

void Runtime::AfterCollection(JSContextGroupRef, void* self) {
  auto& runtime = *static_cast<Runtime*>(self);
  runtime.collected_.store(true);
  runtime.Wake();
}

bool Runtime::ShouldTerminate(JSContextRef, void* self) { return static_cast<Runtime*>(self)->ExitRequested(); }

}  // namespace sorel
