// The clock that the other tests stand on.
#include "manual_clock.h"

#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "recording_queue.h"
#include "zq_msgq.h"
#include "zq_thread.h"
#include "zq_timer.h"

namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

// How often it was written to since the last look.
uint64_t Wakes(int eventFd) {
  uint64_t count = 0;
  return read(eventFd, &count, sizeof count) == sizeof count ? count : 0;
}

TEST(ManualClock, StandsStillUntilItIsMoved) {
  ManualClock clock({1000, 250});
  const uint64_t start = clock.MonotonicNs();
  EXPECT_EQ(clock.MonotonicNs(), start);
  clock.Advance(1500ms);
  EXPECT_EQ(clock.MonotonicNs(), start + 1'500'000'000);
  EXPECT_EQ(clock.Wall().tv_sec, 1001);
  EXPECT_EQ(clock.Wall().tv_nsec, 500'000'250);
  EXPECT_EQ(clock.Elapsed(), 1500ms);
}

TEST(ManualClock, TheCalendarJumpsAlone) {
  ManualClock clock;
  clock.SetWall({-1, 999'999'999});
  EXPECT_EQ(clock.Wall().tv_sec, -1);
  EXPECT_EQ(clock.Wall().tv_nsec, 999'999'999);
  EXPECT_EQ(clock.Elapsed(), 0ns);
  clock.Advance(1);
  EXPECT_EQ(clock.Wall().tv_sec, 0);
  EXPECT_EQ(clock.Wall().tv_nsec, 0);
}

TEST(ManualClock, WakesWhoeverWaitsEachTimeItIsMoved) {
  ManualClock clock;
  const int stays = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
  const int leaves = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
  clock.AddWaker(stays);
  clock.AddWaker(leaves);
  clock.Advance(1);
  clock.SetWall({0, 0});
  EXPECT_EQ(Wakes(stays), 2U);
  EXPECT_EQ(Wakes(leaves), 2U);
  clock.RemoveWaker(leaves);
  clock.Advance(1);
  EXPECT_EQ(Wakes(stays), 1U);
  EXPECT_EQ(Wakes(leaves), 0U);
  close(stays);
  close(leaves);
}

TEST(ManualClock, PollsEndAtOnceOrWhenTheTimeMoves) {
  ManualClock clock;
  const uint64_t now = clock.MonotonicNs();
  EXPECT_EQ(clock.PollTimeoutMs(now), 0);
  EXPECT_EQ(clock.PollTimeoutMs(now + 1), -1);
  EXPECT_EQ(clock.PollTimeoutMs(UINT64_MAX), -1);
}

TEST(ManualClock, SleepersReturnInTheOrderOfTheirTimes) {
  ManualClock clock;
  std::mutex mutex;
  std::string order;
  std::vector<std::thread> sleepers;
  for (const uint32_t ms : {300U, 100U, 200U}) {
    sleepers.emplace_back([&, ms] {
      zq__Sleep(ms, __FILE__, __LINE__);
      const std::lock_guard lock(mutex);
      order += std::to_string(ms) + ",";
    });
  }
  clock.AwaitSleepers(3);
  for (const size_t expected : {1U, 2U, 3U}) {
    clock.Advance(100ms);
    size_t returned = 0;
    while (returned < expected) {
      const std::lock_guard lock(mutex);
      returned = static_cast<size_t>(std::count(order.begin(), order.end(), ','));
    }
  }
  for (std::thread& sleeper : sleepers) sleeper.join();
  EXPECT_EQ(order, "100,200,300,");
}

TEST(RunFor, ThreeDaysOfTimersEachAtItsInstant) {
  ManualClock clock;
  std::vector<milliseconds> hours;
  std::vector<milliseconds> days;
  RecordingQueue queue([&](const MSG_COMMON& message) {
    if (message.type != ZQ_MSG_TIMER) return;
    const auto now = std::chrono::duration_cast<milliseconds>(clock.Elapsed());
    if (message.param1 == 7) hours.push_back(now);
    if (message.param1 == 8) days.push_back(now);
  });
  queue.Start();
  zq_TimerSet(queue.Handle(), 3'600'000, 7, 0, 0, 0, "hour", true);
  zq_TimerSet(queue.Handle(), 86'400'000, 8, 0, 0, 0, "day", true);
  RunFor(clock, queue.Handle(), 72h);
  EXPECT_EQ(clock.Elapsed(), 72h);
  ASSERT_EQ(hours.size(), 72U);
  for (size_t i = 0; i < hours.size(); ++i) EXPECT_EQ(hours[i], (i + 1) * 3'600'000ms);
  EXPECT_EQ(days, (std::vector<milliseconds>{24h, 48h, 72h}));
}

TEST(RunFor, WithoutATimerOnlyTheTimeGoesBy) {
  ManualClock clock;
  RecordingQueue queue;
  queue.Start();
  RunFor(clock, queue.Handle(), 5min);
  EXPECT_EQ(clock.Elapsed(), 5min);
  EXPECT_EQ(queue.Take(), "");
}

TEST(RunFor, ATimerBeyondTheEndDoesNotCome) {
  ManualClock clock;
  RecordingQueue queue;
  queue.Start();
  zq_TimerSet(queue.Handle(), 1001, 3, 0, 0, 0, nullptr, false);
  RunFor(clock, queue.Handle(), 1000ms);
  EXPECT_EQ(queue.Take(), "");
  EXPECT_EQ(zq_TimerTimeRemaining(queue.Handle(), 3, 0, 0), 1U);
  RunFor(clock, queue.Handle(), 1ms);
  EXPECT_EQ(queue.Take(), "256:3:0");
}

}  // namespace
