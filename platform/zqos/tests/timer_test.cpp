// A queue's timers over virtual time: what comes, and when.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <latch>
#include <string>

#include "manual_clock.h"
#include "recording_queue.h"
#include "zq_msgq.h"
#include "zq_timer.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;

int32_t Set(uint32_t queue, uint32_t time, uint32_t id, uintptr_t param = 0, bool repeat = false) {
  return zq_TimerSet(queue, time, id, param, 0, 0, "test", repeat);
}

class TimerTest : public testing::Test {
 protected:
  // An expiry as "id@ms", milliseconds since the start, with ":param" when there is one; a post of type 1000
  // as its first parameter's "p1@ms".
  std::string Write(const MSG_COMMON& message) {
    const std::string at = "@" + std::to_string(clock.Elapsed() / milliseconds(1));
    const std::string param = message.param2 == 0 ? "" : ":" + std::to_string(message.param2);
    if (message.type == ZQ_MSG_TIMER) return std::to_string(message.param1) + param + at;
    return message.type == kPost ? "p" + std::to_string(message.param1) + at : "";
  }

  // Keeps the queue's thread in a handler until Release.
  void Block() {
    Post(queue.Handle(), kBlock);
    inHand.wait();
  }
  void Release() { released.count_down(); }

  void Handle(const MSG_COMMON& message) {
    if (message.type == kBlock) {
      inHand.count_down();
      released.wait();
    }
    if (then) then(message);
  }

  std::string RunFor(int time) {
    ::RunFor(clock, queue.Handle(), milliseconds(time));
    return queue.Take();
  }

  void SetUp() override { queue.Start(); }

  static constexpr uint32_t kPost = 1000;
  static constexpr uint32_t kBlock = 1001;

  ManualClock clock;
  std::latch inHand{1};
  std::latch released{1};
  std::function<void(const MSG_COMMON&)> then;
  RecordingQueue queue{[this](const MSG_COMMON& message) { Handle(message); },
                       [this](const MSG_COMMON& message) { return Write(message); }};
};

TEST_F(TimerTest, ExpiriesComeAtTheirInstantsAndInTheirOrder) {
  EXPECT_EQ(Set(queue.Handle(), 30, 1), 1);
  Set(queue.Handle(), 10, 2);
  Set(queue.Handle(), 20, 3, 77);
  Set(queue.Handle(), 10, 4);
  EXPECT_EQ(RunFor(100), "2@10,4@10,3:77@20,1@30");
  EXPECT_EQ(RunFor(100), "");
}

TEST_F(TimerTest, NothingComesAMomentTooEarly) {
  Set(queue.Handle(), 10, 1);
  clock.Advance(nanoseconds(9'999'999));
  AwaitIdle(queue.Handle());
  EXPECT_EQ(queue.Take(), "");
  clock.Advance(nanoseconds(1));
  AwaitIdle(queue.Handle());
  EXPECT_EQ(queue.Take(), "1@10");
}

TEST_F(TimerTest, AThreeDayTimerComesInThreeDays) {
  constexpr uint32_t kThreeDays = 3U * 24 * 3600 * 1000;
  Set(queue.Handle(), kThreeDays, 1);
  EXPECT_EQ(RunFor(kThreeDays - 1), "");
  EXPECT_EQ(RunFor(1), "1@259200000");
}

TEST_F(TimerTest, SettingAPendingTimerReplacesItsTimeAndParameter) {
  Set(queue.Handle(), 10, 1, 5);
  EXPECT_EQ(RunFor(5), "");
  Set(queue.Handle(), 50, 1, 6);
  EXPECT_EQ(RunFor(100), "1:6@55");
}

TEST_F(TimerTest, AReplacedTimerNoLongerRepeats) {
  Set(queue.Handle(), 10, 1, 0, true);
  Set(queue.Handle(), 20, 1, 0, false);
  EXPECT_EQ(RunFor(100), "1@20");
}

TEST_F(TimerTest, AReplacedTimersOverdueExpiryNeverArrives) {
  Set(queue.Handle(), 10, 1, 5);
  Block();
  clock.Advance(milliseconds(15));
  EXPECT_EQ(zq_MsgQPending(queue.Handle()), 2U) << "the one in hand, and the timer that is due";
  Set(queue.Handle(), 10, 1, 6);
  Release();
  EXPECT_EQ(RunFor(100), "1:6@25");
}

TEST_F(TimerTest, AKilledTimersOverdueExpiryNeverArrives) {
  Set(queue.Handle(), 10, 1);
  Block();
  clock.Advance(milliseconds(15));
  EXPECT_EQ(zq_TimerKill(queue.Handle(), 1, 0, 0), 1);
  EXPECT_EQ(zq_TimerKill(queue.Handle(), 1, 0, 0), 0);
  Release();
  EXPECT_EQ(RunFor(100), "");
}

TEST_F(TimerTest, AKilledTimerCanBeSetAgain) {
  Set(queue.Handle(), 10, 1);
  EXPECT_EQ(zq_TimerKill(queue.Handle(), 1, 0, 0), 1);
  Set(queue.Handle(), 20, 1);
  EXPECT_EQ(RunFor(100), "1@20");
  EXPECT_EQ(zq_TimerKill(queue.Handle(), 1, 0, 0), 0) << "it has expired";
}

TEST_F(TimerTest, ATimerCanBeArmedFromItsOwnHandler) {
  then = [this, left = 2](const MSG_COMMON& message) mutable {
    EXPECT_EQ(zq_TimerTimeRemaining(queue.Handle(), message.param1, 0, 0), ZQ_TIMER_NOT_ARMED);
    if (left-- > 0) Set(queue.Handle(), 10, message.param1);
  };
  Set(queue.Handle(), 10, 1);
  EXPECT_EQ(RunFor(100), "1@10,1@20,1@30");
}

TEST_F(TimerTest, ARepeatedTimerKeepsItsStepUntilItsHandlerKillsIt) {
  then = [this](const MSG_COMMON& message) {
    if (clock.Elapsed() < milliseconds(30)) return;
    EXPECT_EQ(zq_TimerKill(queue.Handle(), message.param1, 0, 0), 1);
  };
  Set(queue.Handle(), 10, 1, 0, true);
  EXPECT_EQ(RunFor(100), "1@10,1@20,1@30");
}

TEST_F(TimerTest, ARepeatedTimerDoesNotMakeUpForMissedExpiries) {
  Set(queue.Handle(), 10, 1, 0, true);
  clock.Advance(milliseconds(35));
  AwaitIdle(queue.Handle());
  EXPECT_EQ(queue.Take(), "1@35");
  EXPECT_EQ(RunFor(20), "1@40,1@50") << "in step with the period it began with";
}

TEST_F(TimerTest, ATimerOfNoTimeIsDueAtOnce) {
  Block();
  Set(queue.Handle(), 0, 1);
  EXPECT_EQ(zq_TimerNextDue(queue.Handle()), 0U);
  Release();
  EXPECT_EQ(RunFor(1), "1@0");
}

TEST_F(TimerTest, RemainingTimeIsRoundedUp) {
  const auto remaining = [this] { return zq_TimerTimeRemaining(queue.Handle(), 1, 0, 0); };
  EXPECT_EQ(remaining(), ZQ_TIMER_NOT_ARMED);
  Set(queue.Handle(), 10, 1);
  EXPECT_EQ(remaining(), 10U);
  clock.Advance(nanoseconds(1));
  EXPECT_EQ(remaining(), 10U);
  clock.Advance(nanoseconds(999'999));
  EXPECT_EQ(remaining(), 9U);
  clock.Advance(nanoseconds(8'999'999));
  EXPECT_EQ(remaining(), 1U);
  Block();
  clock.Advance(milliseconds(1));
  EXPECT_EQ(remaining(), 0U) << "due, not handled yet";
  Release();
  AwaitIdle(queue.Handle());
  EXPECT_EQ(remaining(), ZQ_TIMER_NOT_ARMED);
}

TEST_F(TimerTest, TheLongestTimerStillCountsAsArmed) {
  Set(queue.Handle(), UINT32_MAX, 1);
  EXPECT_EQ(zq_TimerTimeRemaining(queue.Handle(), 1, 0, 0), ZQ_TIMER_NOT_ARMED - 1);
}

TEST_F(TimerTest, TheNextDueIsTheFirstOfAll) {
  EXPECT_EQ(zq_TimerNextDue(queue.Handle()), ZQ_TIMER_NOT_ARMED);
  Set(queue.Handle(), 30, 1);
  EXPECT_EQ(zq_TimerNextDue(queue.Handle()), 30U);
  Set(queue.Handle(), 10, 2);
  EXPECT_EQ(zq_TimerNextDue(queue.Handle()), 10U);
  zq_TimerKill(queue.Handle(), 2, 0, 0);
  EXPECT_EQ(zq_TimerNextDue(queue.Handle()), 30U);
  RunFor(30);
  EXPECT_EQ(zq_TimerNextDue(queue.Handle()), ZQ_TIMER_NOT_ARMED);
}

TEST_F(TimerTest, TwoQueuesHaveTheirOwnTimersOfOneId) {
  RecordingQueue other({}, [this](const MSG_COMMON& message) { return Write(message); });
  other.Start();
  Set(queue.Handle(), 10, 1, 5);
  Set(other.Handle(), 20, 1, 6);
  EXPECT_EQ(zq_TimerKill(queue.Handle(), 1, 0, 0), 1);
  ::RunFor(clock, other.Handle(), milliseconds(50));
  EXPECT_EQ(queue.Take() + other.Take(), "1:6@20");
}

TEST_F(TimerTest, AQueueThatIsGoneIsRefused) {
  const uint32_t gone = queue.Handle();
  Set(gone, 10, 1);
  queue.Destroy(true);
  for (const uint32_t handle : {gone, 0U}) {
    EXPECT_EQ(Set(handle, 10, 1), 0);
    EXPECT_EQ(zq_TimerKill(handle, 1, 0, 0), 0);
    EXPECT_EQ(zq_TimerTimeRemaining(handle, 1, 0, 0), ZQ_TIMER_NOT_ARMED);
    EXPECT_EQ(zq_TimerNextDue(handle), ZQ_TIMER_NOT_ARMED);
  }
}

TEST_F(TimerTest, ANamelessTimerIsATimer) {
  EXPECT_EQ(zq_TimerSet(queue.Handle(), 10, 1, 0, 0, 0, nullptr, false), 1);
  EXPECT_EQ(RunFor(10), "1@10");
}

TEST_F(TimerTest, DueTimersAndPostsGoInTheOrderOfTheirInstants) {
  Block();
  Set(queue.Handle(), 5, 1);
  Post(queue.Handle(), kPost, 1);
  clock.Advance(milliseconds(10));
  Post(queue.Handle(), kPost, 2);
  Release();
  EXPECT_EQ(RunFor(0), "p1@10,1@10,p2@10");
}

TEST_F(TimerTest, AtOneInstantTheOrderIsThatOfAsking) {
  Block();
  Set(queue.Handle(), 0, 1);
  Post(queue.Handle(), kPost, 1);
  Set(queue.Handle(), 0, 2);
  Post(queue.Handle(), kPost, 2);
  Release();
  EXPECT_EQ(RunFor(0), "1@0,p1@0,2@0,p2@0");
}

TEST_F(TimerTest, APostInFrontGoesAheadOfADueTimer) {
  Block();
  Set(queue.Handle(), 0, 1);
  Post(queue.Handle(), kPost, 1, 0, true);
  Release();
  EXPECT_EQ(RunFor(0), "p1@0,1@0");
}

// Each handler takes a millisecond and posts the next: there is no moment without a post that waits.
TEST_F(TimerTest, AnEndlessBurstOfPostsDoesNotHoldATimerUp) {
  then = [this](const MSG_COMMON& message) {
    if (message.type != kPost || message.param1 == 6) return;
    Post(queue.Handle(), kPost, message.param1 + 1);
    clock.Advance(milliseconds(1));
  };
  Block();
  Set(queue.Handle(), 3, 9);
  Post(queue.Handle(), kPost, 1);
  Release();
  AwaitIdle(queue.Handle());
  EXPECT_EQ(queue.Take(), "p1@0,p2@1,p3@2,p4@3,9@4,p5@4,p6@5");
}

TEST_F(TimerTest, AnEndlessTimerOfNoTimeDoesNotHoldPostsUp) {
  then = [this, left = 4](const MSG_COMMON& message) mutable {
    if (message.type != ZQ_MSG_TIMER || left-- == 0) return;
    Set(queue.Handle(), 0, 1);
    if (left == 2) Post(queue.Handle(), kPost, 1);
  };
  Set(queue.Handle(), 0, 1);
  AwaitIdle(queue.Handle());
  EXPECT_EQ(queue.Take(), "1@0,1@0,1@0,p1@0,1@0,1@0");
}

// The system's clock, on which only a lower bound can be told.
TEST(TimerOnTheSystemsClockTest, ComesNotBeforeItsTime) {
  const auto start = std::chrono::steady_clock::now();
  RecordingQueue queue;
  queue.Start();
  Set(queue.Handle(), 20, 1);
  queue.Await(ZQ_MSG_TIMER, 1);
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(20));
}

TEST(TimerOnTheSystemsClockTest, AShorterTimerWakesAQueueThatSleepsForALongerOne) {
  RecordingQueue queue;
  queue.Start();
  Set(queue.Handle(), 3'600'000, 1);
  Set(queue.Handle(), 1, 2);
  queue.Await(ZQ_MSG_TIMER, 1);
  queue.Drain();
  EXPECT_EQ(queue.Take(), "256:2:0");
}

TEST(TimerOnTheSystemsClockTest, AnEndlessRepeatedTimerOfNoTimeLeavesRoomForPostsAndTheEnd) {
  RecordingQueue queue({}, [](const MSG_COMMON&) { return ""; });
  queue.Start();
  Set(queue.Handle(), 0, 1, 0, true);
  queue.Await(ZQ_MSG_TIMER, 3);
  Post(queue.Handle(), 1000);
  queue.Await(1000, 1);
  queue.Destroy(false);
}

}  // namespace
