// One-shot timers of a queue, by small ids. A timer that expires arrives as a ZQ_MSG_TIMER message. Any
// thread. Time is the platform's monotonic clock (zq_clock.h).
#ifndef ZQ_TIMER_H
#define ZQ_TIMER_H

#include <stdint.h>

#include "zq_api.h"

#ifdef __cplusplus
extern "C" {
#endif

#define ZQ_TIMER_NOT_ARMED 0xFFFFFFFFU

// Arms timer `id`: after `milliseconds` its message comes with `param`. A timer that is still pending is
// replaced: period, parameter and name. `reserved1`, `reserved2` are 0. The name (copied, may be null) is for
// traces. `repeat` true arms it again at each expiry. Returns 1, or 0 when the queue is gone.
ZQ_API int32_t zq_TimerSet(uint32_t queue, uint32_t milliseconds, uint32_t id, uintptr_t param,
                           uint32_t reserved1, uint32_t reserved2, const char* name, bool repeat);
// Disarms; its message does not come any more, unless it is in the handler's hand. 1 when it was armed, else
// 0.
ZQ_API int32_t zq_TimerKill(uint32_t queue, uint32_t id, uint32_t reserved1, uint32_t reserved2);
// Milliseconds until the timer expires, rounded up; ZQ_TIMER_NOT_ARMED when it is not armed or the queue is
// gone.
ZQ_API uint32_t zq_TimerTimeRemaining(uint32_t queue, uint32_t id, uint32_t reserved1, uint32_t reserved2);
// Milliseconds until the queue's next timer expires: how long a device may doze. ZQ_TIMER_NOT_ARMED for none.
ZQ_API uint32_t zq_TimerNextDue(uint32_t queue);

#ifdef __cplusplus
}
#endif

#endif
