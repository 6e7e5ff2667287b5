// The ends of a queue: Drain, Destroy, the destructor.
#include <gtest/gtest.h>
#include <sched.h>

#include <cstddef>
#include <filesystem>
#include <functional>
#include <iterator>
#include <latch>
#include <memory>
#include <string>
#include <thread>

#include "recording_queue.h"
#include "zq_memory.h"
#include "zq_msgq.h"
#include "zq_timer.h"

namespace {

constexpr uint32_t kPost = 1000;
constexpr uint32_t kBlock = 1001;

std::ptrdiff_t OpenDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

class MsgqEndTest : public testing::Test {
 protected:
  // Keeps the queue's thread in a handler until Release, with three posts behind it.
  void BlockAndPost() {
    queue.Start();
    handle = queue.Handle();
    Post(handle, kBlock);
    inHand.wait();
    for (uint32_t i = 1; i <= 3; ++i) Post(handle, kPost, i);
  }
  void Release() { released.count_down(); }

  uint32_t handle = 0;
  std::latch inHand{1};
  std::latch released{1};
  std::function<void(const MSG_COMMON&)> then;
  RecordingQueue queue{[this](const MSG_COMMON& message) {
                         if (message.type == kBlock) {
                           inHand.count_down();
                           released.wait();
                         }
                         if (then) then(message);
                       },
                       [](const MSG_COMMON& message) { return std::to_string(message.param1); }};
};

TEST_F(MsgqEndTest, DrainHandlesWhatWasPostedAndRefusesLaterPosts) {
  BlockAndPost();
  then = [this](const MSG_COMMON& message) {
    if (message.type == kPost) Post(handle, kPost, message.param1 + 10);
  };
  // The timer's going away shows that Drain has begun.
  zq_TimerSet(handle, 3'600'000, 1, 0, 0, 0, nullptr, false);
  std::thread drainer([this] { queue.Drain(); });
  while (zq_TimerNextDue(handle) != ZQ_TIMER_NOT_ARMED) sched_yield();
  EXPECT_FALSE(Post(handle, kPost, 4));
  EXPECT_FALSE(Post(handle, kPost, 5, 0, true));
  Release();
  drainer.join();
  EXPECT_EQ(queue.Take(), "0,1,2,3");
  EXPECT_EQ(zq_MsgQPending(handle), 0U);
  queue.Destroy(false);
  EXPECT_EQ(queue.Take(), "") << "what handlers use may be gone since Drain";
}

TEST_F(MsgqEndTest, DrainDisarmsTimersForGood) {
  queue.Start();
  zq_TimerSet(queue.Handle(), 0, 1, 0, 0, 0, nullptr, true);
  queue.Await(ZQ_MSG_TIMER, 1);
  queue.Drain();
  queue.Take();
  EXPECT_EQ(zq_TimerTimeRemaining(queue.Handle(), 1, 0, 0), ZQ_TIMER_NOT_ARMED);
  EXPECT_EQ(zq_TimerSet(queue.Handle(), 0, 1, 0, 0, 0, nullptr, false), 0);
  queue.Destroy(false);
  EXPECT_EQ(queue.Take(), "");
}

TEST_F(MsgqEndTest, DrainFromAHandlerReturnsAtOnceAndTheRestIsHandled) {
  BlockAndPost();
  then = [this](const MSG_COMMON& message) {
    if (message.type == kBlock) queue.Drain();
  };
  Release();
  queue.Drain();
  EXPECT_EQ(queue.Take(), "0,1,2,3");
}

TEST_F(MsgqEndTest, DrainingTwiceAtOnceEndsBoth) {
  BlockAndPost();
  std::thread first([this] { queue.Drain(); });
  std::thread second([this] { queue.Drain(); });
  Release();
  first.join();
  second.join();
  EXPECT_EQ(queue.Take(), "0,1,2,3");
}

TEST_F(MsgqEndTest, EndsBeforeTheBeginningAreNothing) {
  queue.Drain();
  queue.Destroy(false);
  queue.Destroy(true);
  EXPECT_EQ(queue.Handle(), 0U);
}

TEST_F(MsgqEndTest, DestroyHandlesWhatWasPostedBefore) {
  BlockAndPost();
  std::thread ender([this] { queue.Destroy(false); });
  while (zq_MsgQPending(handle) != 0) sched_yield();
  EXPECT_FALSE(Post(handle, kPost, 4));
  EXPECT_EQ(queue.Handle(), 0U);
  Release();
  ender.join();
  EXPECT_EQ(queue.Take(), "0,1,2,3");
}

TEST_F(MsgqEndTest, DestroyWithDiscardHandlesNothingMore) {
  BlockAndPost();
  std::thread ender([this] { queue.Destroy(true); });
  while (zq_MsgQPending(handle) != 0) sched_yield();
  Release();
  ender.join();
  EXPECT_EQ(queue.Take(), "0");
}

TEST_F(MsgqEndTest, ADiscardOvertakesADestroyThatHandles) {
  BlockAndPost();
  std::thread patient([this] { queue.Destroy(false); });
  while (zq_MsgQPending(handle) != 0) sched_yield();
  then = [this](const MSG_COMMON& message) {
    if (message.param1 == 2) queue.Destroy(true);
  };
  Release();
  patient.join();
  EXPECT_EQ(queue.Take(), "0,1,2");
}

TEST_F(MsgqEndTest, DestroyFromAHandlerEndsTheThreadAfterIt) {
  BlockAndPost();
  then = [this](const MSG_COMMON& message) {
    if (message.type != kBlock) return;
    queue.Destroy(false);
    EXPECT_FALSE(Post(handle, kPost, 9));
  };
  Release();
  queue.Destroy(false);
  EXPECT_EQ(queue.Take(), "0");
}

TEST_F(MsgqEndTest, TwoDestroysAtOnceReturnBothAfterTheEnd) {
  BlockAndPost();
  std::string seen[2];
  std::thread first([&] {
    queue.Destroy(false);
    seen[0] = std::to_string(queue.Count(kPost));
  });
  std::thread second([&] {
    queue.Destroy(false);
    seen[1] = std::to_string(queue.Count(kPost));
  });
  Release();
  first.join();
  second.join();
  EXPECT_EQ(seen[0] + seen[1], "33");
}

TEST_F(MsgqEndTest, DestroyFromTheStartedMessageLetsCreateReturn) {
  then = [this](const MSG_COMMON&) { queue.Destroy(true); };
  EXPECT_TRUE(queue.Create(nullptr, 0));
  EXPECT_EQ(queue.Handle(), 0U);
}

TEST_F(MsgqEndTest, AQueueIsCreatedOnceUntilItIsDestroyed) {
  ASSERT_TRUE(queue.Create(nullptr, 0));
  const uint32_t first = queue.Handle();
  EXPECT_FALSE(queue.Create(nullptr, 0));
  EXPECT_EQ(queue.Handle(), first);
  queue.Destroy(false);
  ASSERT_TRUE(queue.Create(nullptr, 0));
  EXPECT_NE(queue.Handle(), first);
  EXPECT_FALSE(Post(first, kPost));
  EXPECT_TRUE(Post(queue.Handle(), kPost));
}

class Suicidal : public zq_MsgQ {
 public:
  explicit Suicidal(std::latch* gone) : zq_MsgQ("suicidal", nullptr), gone_(gone) {}
  ~Suicidal() override {
    Destroy(false);
    gone_->count_down();
  }
  void MessageHandler(MSG_COMMON* message) override {
    const uint32_t type = message->type;
    zq__free(message, __FILE__, __LINE__);
    if (type == kPost) delete this;
  }

 private:
  std::latch* gone_;
};

TEST(MsgqDestructorTest, AHandlerMayDeleteItsQueue) {
  const auto before = OpenDescriptors();
  std::latch gone(1);
  auto* const queue = new Suicidal(&gone);
  ASSERT_TRUE(queue->Create(nullptr, 0));
  const uint32_t handle = queue->Handle();
  for (int i = 0; i < 3; ++i) Post(handle, kPost);
  gone.wait();
  EXPECT_FALSE(Post(handle, kPost));
  while (OpenDescriptors() != before)
    sched_yield();  // what the thread had goes when the handler has returned
}

class Careless : public zq_MsgQ {
 public:
  Careless() : zq_MsgQ(nullptr, nullptr) {}
  void MessageHandler(MSG_COMMON* message) override { zq__free(message, __FILE__, __LINE__); }
};

TEST(MsgqDestructorTest, AnIdleQueueThatNobodyDestroyedEndsWithItsObject) {
  uint32_t handle = 0;
  {
    Careless queue;
    ASSERT_TRUE(queue.Create(nullptr, 0));
    handle = queue.Handle();
    ASSERT_EQ(zq_TimerSet(handle, 3'600'000, 1, 0, 0, 0, "late", false), 1);
    queue.Drain();
    EXPECT_FALSE(Post(handle, kPost));
  }
  EXPECT_FALSE(Post(handle, kPost));
  EXPECT_EQ(zq_TimerNextDue(handle), ZQ_TIMER_NOT_ARMED);
}

TEST(MsgqDestructorTest, AQueueGivesItsDescriptorsBack) {
  const auto before = OpenDescriptors();
  for (int i = 0; i < 20; ++i) {
    Careless queue;
    ASSERT_TRUE(queue.Create(nullptr, 0));
    queue.Destroy(i % 2 == 0);
    EXPECT_EQ(OpenDescriptors(), before);
  }
}

}  // namespace
