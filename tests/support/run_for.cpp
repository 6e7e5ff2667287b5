// Apart from the clock, so that a program without queues links the clock alone.
#include <sched.h>

#include "manual_clock.h"
#include "zq_msgq.h"
#include "zq_timer.h"

void AwaitIdle(uint32_t queue) {
  while (zq_MsgQPending(queue) != 0) sched_yield();
}

void RunFor(ManualClock& clock, uint32_t queue, std::chrono::milliseconds time) {
  using std::chrono::milliseconds;
  const std::chrono::nanoseconds end = clock.Elapsed() + time;
  AwaitIdle(queue);
  for (;;) {
    const std::chrono::nanoseconds left = end - clock.Elapsed();
    if (left.count() <= 0) return;
    const uint32_t next = zq_TimerNextDue(queue);
    const bool within = next != ZQ_TIMER_NOT_ARMED && milliseconds(next) <= left;
    clock.Advance(within ? milliseconds(next) : left);
    AwaitIdle(queue);
  }
}
