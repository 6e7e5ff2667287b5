// The one source of time of the platform: queue timers, zq__Sleep and zq_SecondsIntoMonth read it and nothing
// else. The default is the system's clock. A host that owns time itself (a simulation, a test) installs its
// own.
#ifndef ZQ_CLOCK_H
#define ZQ_CLOCK_H

#include <cstdint>
#include <ctime>

#include "zq_api.h"

// Called by any thread, several at once.
class ZQ_API zq_Clock {
 public:
  virtual ~zq_Clock();
  // Nanoseconds since a start that never changes; never goes back.
  virtual uint64_t MonotonicNs() = 0;
  // The calendar's time; may jump either way.
  virtual timespec Wall() = 0;
  // Returns when MonotonicNs() has advanced by `ns`.
  virtual void Sleep(uint64_t ns) = 0;
  // For a thread about to wait in poll or epoll until `deadlineNs` (UINT64_MAX: none): the timeout in
  // milliseconds to wait for, rounded up, -1 for no limit. A clock that does not run by itself answers 0 or
  // -1, and makes the descriptors given to AddWaker readable (an eventfd write) whenever its time moves.
  virtual int PollTimeoutMs(uint64_t deadlineNs) = 0;
  virtual void AddWaker(int eventFd) = 0;
  virtual void RemoveWaker(int eventFd) = 0;
};

// The clock in use; never null.
ZQ_API zq_Clock* zq_ClockGet();
// Puts another clock in its place, before any queue is created; null is the system's. The caller keeps it
// alive as long as a queue or a sleeper may read it. Returns the one that was in use.
ZQ_API zq_Clock* zq_ClockSet(zq_Clock* clock);

#endif
