// A clock that only a test moves, and timers run over it.
#ifndef ZQ_TEST_MANUAL_CLOCK_H
#define ZQ_TEST_MANUAL_CLOCK_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <ctime>
#include <mutex>
#include <vector>

#include "zq_clock.h"

// In use from its construction to its end, when the clock before it comes back. It outlives every queue and
// every sleeper that may read it: in a test it is declared first.
class ManualClock : public zq_Clock {
 public:
  // 2026-11-21T09:00:00 UTC.
  static constexpr time_t kDefaultStart = 1795251600;

  explicit ManualClock(timespec wall = {kDefaultStart, 0});
  ManualClock(const ManualClock&) = delete;
  ManualClock& operator=(const ManualClock&) = delete;
  ~ManualClock() override;

  // Both times go forward; queues look at their timers, and sleepers whose time has come return.
  void Advance(uint64_t ns);
  void Advance(std::chrono::nanoseconds time) { Advance(static_cast<uint64_t>(time.count())); }
  // The calendar jumps; the monotonic time stays.
  void SetWall(timespec wall);
  // Returns when at least `count` threads are in Sleep (their time has not come yet).
  void AwaitSleepers(size_t count);
  // Until the first of the sleepers wakes; 0 when nobody sleeps.
  std::chrono::nanoseconds ToNextWake();
  // Monotonic time since the construction.
  std::chrono::nanoseconds Elapsed();

  uint64_t MonotonicNs() override;
  timespec Wall() override;
  void Sleep(uint64_t ns) override;
  int PollTimeoutMs(uint64_t deadlineNs) override;
  void AddWaker(int eventFd) override;
  void RemoveWaker(int eventFd) override;

 private:
  void WakeAll();

  std::mutex mutex_;
  std::condition_variable moved_;     // the time
  std::condition_variable sleeping_;  // the number of sleepers
  uint64_t nowNs_;
  int64_t wallNs_;
  std::vector<uint64_t> sleepersUntil_;
  std::vector<int> wakers_;
  zq_Clock* before_;
};

// Runs a queue for that much virtual time: goes from timer to timer, each at its instant, and waits after
// each until the queue has handled everything. Returns when the whole time has gone by and the queue is idle.
void RunFor(ManualClock& clock, uint32_t queue, std::chrono::milliseconds time);
// Returns when the queue has nothing to handle at this instant.
void AwaitIdle(uint32_t queue);

#endif
