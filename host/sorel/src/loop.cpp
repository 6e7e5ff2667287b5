#include "loop.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "finalizers.h"
#include "output.h"
#include "runtime.h"
#include "script_timers.h"
#include "stack_scrub.h"
#include "zq_clock.h"

namespace sorel {

void Loop::WatchInput(int descriptor, std::function<void()> ready, std::function<void()> idle) {
  input_ = descriptor;
  ready_ = std::move(ready);
  idle_ = std::move(idle);
}

bool Loop::Alive() const {
  const Runtime& runtime = Runtime::Get();
  if (runtime.ExitRequested()) return false;
  return input_ >= 0 || NextTimerDue() != kNever || Runtime::Get().Handles().Instances() > 0;
}

JSValueRef Loop::Run(JSContextRef context) {
  zq_Clock* clock = zq_ClockGet();
  clock->AddWaker(Runtime::Get().WakeFd());
  JSValueRef thrown = nullptr;
  collector_.OnActivity();
  while (thrown == nullptr) {
    if (Runtime::Get().TakeCollected()) FinalizeCollected();
    if (NextTimerDue() <= clock->MonotonicNs()) {
      collector_.OnActivity();
      if (!RunDueTimers(context, &thrown)) break;
    }
    CollectWhenIdle(context);
    if (!Alive()) break;
    Wait();
  }
  clock->RemoveWaker(Runtime::Get().WakeFd());
  return thrown;
}

void Loop::CollectWhenIdle(JSContextRef context) {
  HandleTable& handles = Runtime::Get().Handles();
  const Instant now = zq_ClockGet()->MonotonicNs();
  if (Runtime::Get().ExitRequested() || collector_.NextDue(now, handles.Instances()) > now) return;
  ScrubStack();
  JSSynchronousGarbageCollectForDebugging(context);
  Runtime::Get().TakeCollected();
  collector_.OnCollected(zq_ClockGet()->MonotonicNs(), static_cast<size_t>(FinalizeCollected()));
}

void Loop::Wait() {
  zq_Clock* clock = zq_ClockGet();
  if (idle_) idle_();
  FlushOutput();
  const Instant collection = collector_.NextDue(clock->MonotonicNs(), Runtime::Get().Handles().Instances());
  std::array<pollfd, 2> ready = {{{Runtime::Get().WakeFd(), POLLIN, 0}, {input_, POLLIN, 0}}};
  const int timeout = clock->PollTimeoutMs(std::min(NextTimerDue(), collection));
  if (poll(ready.data(), ready.size(), timeout) <= 0) return;
  if (ready[0].revents != 0) {
    uint64_t wakes = 0;
    if (read(ready[0].fd, &wakes, sizeof wakes) < 0) return;
  }
  if (ready[1].revents != 0) {
    collector_.OnActivity();
    ready_();
  }
}

}  // namespace sorel
