#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>

#include "zq_clock.h"

namespace {

constexpr uint64_t kNsPerSecond = 1'000'000'000;
constexpr uint64_t kNsPerMs = 1'000'000;

class SystemClock : public zq_Clock {
 public:
  uint64_t MonotonicNs() override {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint64_t>(now.tv_sec) * kNsPerSecond + static_cast<uint64_t>(now.tv_nsec);
  }

  timespec Wall() override {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return now;
  }

  void Sleep(uint64_t ns) override {
    const uint64_t now = MonotonicNs();
    const uint64_t end = now + std::min(ns, UINT64_MAX - now);
    const timespec until{static_cast<time_t>(end / kNsPerSecond), static_cast<long>(end % kNsPerSecond)};
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {
    }
  }

  int PollTimeoutMs(uint64_t deadlineNs) override {
    if (deadlineNs == UINT64_MAX) return -1;
    const uint64_t now = MonotonicNs();
    if (deadlineNs <= now) return 0;
    const uint64_t rest = (deadlineNs - now - 1) / kNsPerMs + 1;
    return rest < INT_MAX ? static_cast<int>(rest) : INT_MAX;
  }

  // It runs by itself: nobody needs waking.
  void AddWaker(int) override {}
  void RemoveWaker(int) override {}
};

zq_Clock* System() {
  static auto* const clock = new SystemClock;  // never destroyed: threads sleep until the process is gone
  return clock;
}

constinit std::atomic<zq_Clock*> g_installed{nullptr};

}  // namespace

zq_Clock::~zq_Clock() = default;

zq_Clock* zq_ClockGet() {
  zq_Clock* clock = g_installed.load(std::memory_order_acquire);
  return clock != nullptr ? clock : System();
}

zq_Clock* zq_ClockSet(zq_Clock* clock) {
  zq_Clock* before = g_installed.exchange(clock, std::memory_order_acq_rel);
  return before != nullptr ? before : System();
}
