// Posting to a queue: order, handles, the first message.
#include <gtest/gtest.h>

#include <array>
#include <latch>
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

}  // namespace
