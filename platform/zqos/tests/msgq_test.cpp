// Posting to a queue: order, handles, the first message.
#include <gtest/gtest.h>
#include <pthread.h>

#include <array>
#include <latch>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "recording_queue.h"
#include "zq_memory.h"
#include "zq_msgq.h"

namespace {

constexpr uint32_t kType = 1000;

std::string OfParam1(const MSG_COMMON& message) {
  return message.type == kType ? std::to_string(message.param1) : "";
}

TEST(MsgqTest, CreateReturnsAfterTheStartedMessageWasHandledOnTheQueuesThread) {
  std::thread::id handledBy;
  RecordingQueue queue([&](const MSG_COMMON&) { handledBy = std::this_thread::get_id(); });
  EXPECT_EQ(queue.Handle(), 0U);
  ASSERT_TRUE(queue.Create("started", 0));
  EXPECT_EQ(queue.Take(), "1:0:0");
  EXPECT_NE(handledBy, std::this_thread::get_id());
  EXPECT_NE(handledBy, std::thread::id());
  EXPECT_NE(queue.Handle(), 0U);
}

TEST(MsgqTest, TheQueueHasItsHandleWhenTheStartedMessageComes) {
  uint32_t seen = 0;
  uint32_t destination = 1;
  RecordingQueue queue([&](const MSG_COMMON& message) {
    if (message.type != ZQ_MSG_QUEUE_STARTED) return;
    destination = message.destination;
    seen = zq_MsgQPending(message.destination);
    Post(message.destination, kType, 7);
  });
  ASSERT_TRUE(queue.Create(nullptr, 0));
  EXPECT_EQ(destination, queue.Handle());
  EXPECT_EQ(seen, 1U) << "the one in hand";
  queue.Drain();
  EXPECT_EQ(queue.Take(), "1:0:0,1000:7:0");
}

TEST(MsgqTest, AMessageArrivesAsItWasPosted) {
  MSG_COMMON got{};
  RecordingQueue queue([&](const MSG_COMMON& message) { got = message; });
  queue.Start();
  ASSERT_TRUE(zq__MsgCreateCommonAndSend(queue.Handle(), 77, kType, 5, UINTPTR_MAX, 9, false, 3, "f", 1));
  queue.Await(kType, 1);
  queue.Drain();
  EXPECT_EQ(got.destination, queue.Handle());
  EXPECT_EQ(got.source, 77U);
  EXPECT_EQ(got.priority, 3U);
  EXPECT_EQ(got.type, kType);
  EXPECT_EQ(got.param1, 5U);
  EXPECT_EQ(got.param2, UINTPTR_MAX);
  EXPECT_EQ(got.param3, 9U);
}

TEST(MsgqTest, APostInFrontGoesAheadOfWhatWaits) {
  std::latch inHand(1);
  std::latch posted(1);
  RecordingQueue queue(
      [&](const MSG_COMMON& message) {
        if (message.type != kType || message.param1 != 0) return;
        inHand.count_down();
        posted.wait();
      },
      OfParam1);
  queue.Start();
  Post(queue.Handle(), kType, 0);
  inHand.wait();
  Post(queue.Handle(), kType, 1);
  Post(queue.Handle(), kType, 2);
  Post(queue.Handle(), kType, 3, 0, true);
  posted.count_down();
  queue.Drain();
  EXPECT_EQ(queue.Take(), "0,3,1,2");
}

TEST(MsgqTest, AHandleIsNotGivenOutAgain) {
  std::set<uint32_t> handles;
  for (int i = 0; i < 300; ++i) {
    RecordingQueue queue;
    queue.Start();
    EXPECT_TRUE(handles.insert(queue.Handle()).second);
    queue.Destroy(true);
  }
  for (const uint32_t handle : handles) {
    EXPECT_FALSE(Post(handle, kType));
    EXPECT_EQ(zq_MsgQPending(handle), 0U);
  }
  EXPECT_FALSE(Post(0, kType));
  EXPECT_EQ(zq_MsgQPending(0), 0U);
}

TEST(MsgqTest, TwoQueuesPostToEachOther) {
  constexpr uint32_t kRounds = 10'000;
  // Returns the ball to whoever sent it.
  const auto play = [](const MSG_COMMON& message) {
    if (message.type != kType || message.param1 == kRounds) return;
    EXPECT_TRUE(zq__MsgCreateCommonAndSend(message.source, message.destination, kType, message.param1 + 1, 0,
                                           0, false, 0, __FILE__, __LINE__));
  };
  RecordingQueue one(play, [](const MSG_COMMON&) { return ""; });
  RecordingQueue two(play, [](const MSG_COMMON&) { return ""; });
  one.Start();
  two.Start();
  zq__MsgCreateCommonAndSend(one.Handle(), two.Handle(), kType, 0, 0, 0, false, 0, __FILE__, __LINE__);
  one.Await(kType, kRounds / 2 + 1);
  one.Drain();
  two.Drain();
  EXPECT_EQ(one.Count(kType), kRounds / 2 + 1);
  EXPECT_EQ(two.Count(kType), kRounds / 2);
}

TEST(MsgqTest, TheThreadCarriesTheGivenName) {
  const auto nameOfThread = [](const char* queueName, const char* threadName, const char* rename) {
    char name[16] = "";
    class Queue : public zq_MsgQ {
     public:
      Queue(const char* queue, const char* thread, char* seen) : zq_MsgQ(queue, thread), seen_(seen) {}
      ~Queue() override { Destroy(true); }
      void MessageHandler(MSG_COMMON* message) override {
        if (message->type == kType) pthread_getname_np(pthread_self(), seen_, 16);
        zq__free(message, __FILE__, __LINE__);
      }

     private:
      char* seen_;
    } queue(queueName, threadName, name);
    EXPECT_TRUE(queue.Create(nullptr, 0));
    queue.SetName(rename);
    Post(queue.Handle(), kType);
    queue.Drain();
    return std::string(name);
  };
  EXPECT_EQ(nameOfThread("queue", "thread", nullptr), "thread");
  EXPECT_EQ(nameOfThread("queue", nullptr, nullptr), "queue");
  EXPECT_EQ(nameOfThread("queue", nullptr, "renamed"), "renamed");
  EXPECT_EQ(nameOfThread("queue", "thread", "renamed"), "thread");
}

// Checks that each thread's numbers, param2, come without a gap and in their order.
class CountingQueue : public zq_MsgQ {
 public:
  CountingQueue() : zq_MsgQ("counting", nullptr) {}
  ~CountingQueue() override { Destroy(true); }

  void MessageHandler(MSG_COMMON* message) override {
    if (message->type == kType && message->param2 != next_.at(message->param1)++) ++outOfOrder_;
    zq__free(message, __FILE__, __LINE__);
  }

  // After Drain.
  uintptr_t Handled(size_t thread) const { return next_.at(thread); }
  int OutOfOrder() const { return outOfOrder_; }

 private:
  std::array<uintptr_t, 8> next_{};
  int outOfOrder_ = 0;
};

TEST(MsgqTest, EightThreadsLoseNothingAndKeepTheirOrder) {
  constexpr uintptr_t kEach = 100'000;
  CountingQueue queue;
  ASSERT_TRUE(queue.Create(nullptr, 0));
  std::vector<std::thread> threads;
  for (uint32_t t = 0; t < 8; ++t) {
    threads.emplace_back([&queue, t] {
      for (uintptr_t i = 0; i < kEach; ++i) ASSERT_TRUE(Post(queue.Handle(), kType, t, i));
    });
  }
  for (std::thread& thread : threads) thread.join();
  queue.Drain();
  for (uint32_t t = 0; t < 8; ++t) EXPECT_EQ(queue.Handled(t), kEach);
  EXPECT_EQ(queue.OutOfOrder(), 0);
}

TEST(MsgqTest, AMillionPostsInABurstAllArrive) {
  constexpr uintptr_t kBurst = 1'000'000;
  CountingQueue queue;
  ASSERT_TRUE(queue.Create(nullptr, 0));
  const uint32_t handle = queue.Handle();
  for (uintptr_t i = 0; i < kBurst; ++i) ASSERT_TRUE(Post(handle, kType, 0, i));
  queue.Destroy(false);
  EXPECT_EQ(queue.Handled(0), kBurst);
  EXPECT_EQ(queue.OutOfOrder(), 0);
}

}  // namespace
