#include <gtest/gtest.h>

#include <climits>
#include <thread>

#include "manual_clock.h"
#include "zq_clock.h"
#include "zq_thread.h"

namespace {

using std::chrono::milliseconds;

TEST(SystemClock, NeverGoesBack) {
  uint64_t last = 0;
  for (int i = 0; i < 1000; ++i) {
    const uint64_t now = zq_ClockGet()->MonotonicNs();
    ASSERT_GE(now, last);
    last = now;
  }
}

TEST(SystemClock, WallIsTheCalendarsTime) {
  const time_t before = time(nullptr);
  const timespec wall = zq_ClockGet()->Wall();
  // time() may lag behind clock_gettime by a tick.
  EXPECT_GE(wall.tv_sec, before);
  EXPECT_LE(wall.tv_sec, time(nullptr) + 1);
}

TEST(SystemClock, SleepsAtLeastAsLongAsAsked) {
  zq_Clock* clock = zq_ClockGet();
  const uint64_t start = clock->MonotonicNs();
  zq__Sleep(3, __FILE__, __LINE__);
  EXPECT_GE(clock->MonotonicNs() - start, 3'000'000U);
}

TEST(SystemClock, PollTimeoutIsRoundedUpSoThatNothingIsDueTooEarly) {
  zq_Clock* clock = zq_ClockGet();
  const uint64_t hour = 3'600'000'000'000;
  const int timeout = clock->PollTimeoutMs(clock->MonotonicNs() + hour);
  EXPECT_LE(timeout, 3'600'000);
  EXPECT_GT(timeout, 3'500'000);
  // A deadline just ahead is never "now": the queue would spin.
  uint64_t deadline = 0;
  int soon = 0;
  do {
    deadline = clock->MonotonicNs() + 900'000;
    soon = clock->PollTimeoutMs(deadline);
  } while (clock->MonotonicNs() >= deadline);
  EXPECT_EQ(soon, 1);
}

TEST(SystemClock, PollTimeoutHasNoLimitWithoutADeadlineAndIsOverForAPastOne) {
  zq_Clock* clock = zq_ClockGet();
  EXPECT_EQ(clock->PollTimeoutMs(UINT64_MAX), -1);
  EXPECT_EQ(clock->PollTimeoutMs(0), 0);
  EXPECT_EQ(clock->PollTimeoutMs(UINT64_MAX - 1), INT_MAX);
}

TEST(ClockSet, GivesTheClockThatWasInUseAndNullBringsTheSystemsBack) {
  zq_Clock* system = zq_ClockGet();
  {
    ManualClock manual;
    EXPECT_EQ(zq_ClockGet(), &manual);
    EXPECT_EQ(zq_ClockSet(nullptr), &manual);
    EXPECT_EQ(zq_ClockGet(), system);
    EXPECT_EQ(zq_ClockSet(&manual), system);
  }
  EXPECT_EQ(zq_ClockGet(), system);
}

TEST(Sleep, GoesByThePlatformsClock) {
  ManualClock clock;
  bool returned = false;
  std::thread sleeper([&] {
    zq__Sleep(86'400'000, __FILE__, __LINE__);
    returned = true;
  });
  clock.AwaitSleepers(1);
  clock.Advance(milliseconds(86'399'999));
  clock.AwaitSleepers(1);  // a millisecond early: still asleep
  clock.Advance(milliseconds(1));
  sleeper.join();
  EXPECT_TRUE(returned);
  EXPECT_EQ(clock.Elapsed(), std::chrono::hours(24));
}

TEST(Sleep, OfNothingReturnsAtOnce) {
  const ManualClock clock;
  zq__Sleep(0, __FILE__, __LINE__);
}

}  // namespace
