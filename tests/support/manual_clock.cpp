#include "manual_clock.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int64_t kNsPerSecond = 1'000'000'000;
// Not 0, so that code that takes 0 for "never" is found out.
constexpr uint64_t kStartNs = 5'000'000'000;

int64_t ToNs(timespec time) {
  return int64_t{time.tv_sec} * kNsPerSecond + time.tv_nsec;
}

}  // namespace

ManualClock::ManualClock(timespec wall) : nowNs_(kStartNs), wallNs_(ToNs(wall)), before_(zq_ClockSet(this)) {}

ManualClock::~ManualClock() {
  zq_ClockSet(before_);
}

void ManualClock::Advance(uint64_t ns) {
  const std::lock_guard lock(mutex_);
  nowNs_ += ns;
  wallNs_ += static_cast<int64_t>(ns);
  // Here, not in the sleepers, so that AwaitSleepers never counts one that is on its way out.
  std::erase_if(sleepersUntil_, [this](uint64_t until) { return until <= nowNs_; });
  moved_.notify_all();
  WakeAll();
}

void ManualClock::SetWall(timespec wall) {
  const std::lock_guard lock(mutex_);
  wallNs_ = ToNs(wall);
  WakeAll();
}

void ManualClock::AwaitSleepers(size_t count) {
  std::unique_lock lock(mutex_);
  sleeping_.wait(lock, [&] { return sleepersUntil_.size() >= count; });
}

std::chrono::nanoseconds ManualClock::ToNextWake() {
  const std::lock_guard lock(mutex_);
  const auto first = std::min_element(sleepersUntil_.begin(), sleepersUntil_.end());
  return std::chrono::nanoseconds(first != sleepersUntil_.end() ? *first - nowNs_ : 0);
}

std::chrono::nanoseconds ManualClock::Elapsed() {
  return std::chrono::nanoseconds(MonotonicNs() - kStartNs);
}

uint64_t ManualClock::MonotonicNs() {
  const std::lock_guard lock(mutex_);
  return nowNs_;
}

timespec ManualClock::Wall() {
  const std::lock_guard lock(mutex_);
  int64_t seconds = wallNs_ / kNsPerSecond;
  int64_t rest = wallNs_ % kNsPerSecond;
  if (rest < 0) {
    --seconds;
    rest += kNsPerSecond;
  }
  return {static_cast<time_t>(seconds), static_cast<long>(rest)};
}

void ManualClock::Sleep(uint64_t ns) {
  if (ns == 0) return;
  std::unique_lock lock(mutex_);
  const uint64_t until = nowNs_ + ns;
  sleepersUntil_.push_back(until);
  sleeping_.notify_all();
  moved_.wait(lock, [&] { return nowNs_ >= until; });
}

int ManualClock::PollTimeoutMs(uint64_t deadlineNs) {
  return deadlineNs <= MonotonicNs() ? 0 : -1;
}

void ManualClock::AddWaker(int eventFd) {
  const std::lock_guard lock(mutex_);
  wakers_.push_back(eventFd);
}

void ManualClock::RemoveWaker(int eventFd) {
  const std::lock_guard lock(mutex_);
  std::erase(wakers_, eventFd);
}

void ManualClock::WakeAll() {
  const uint64_t one = 1;
  for (const int waker : wakers_) {
    if (write(waker, &one, sizeof one) != sizeof one) {
      perror("ManualClock: a waker is no event descriptor");
      abort();
    }
  }
}
