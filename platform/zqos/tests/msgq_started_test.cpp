// What a queue's first handler may rely on.
#include <gtest/gtest.h>

#include <atomic>

#include "zq_memory.h"
#include "zq_msgq.h"
#include "zq_timer.h"

namespace {

class StartedQueue : public zq_MsgQ {
 public:
  StartedQueue() : zq_MsgQ(nullptr, nullptr) {}
  ~StartedQueue() override { Destroy(false); }
  void MessageHandler(MSG_COMMON* message) override {
    if (message->type == ZQ_MSG_QUEUE_STARTED) {
      handleAtStart = Handle();
      armedAtStart = zq_TimerSet(Handle(), 60000, 1, 0, 0, 0, "first", false) == 1;
      SetName("named at its start");
    }
    zq__free(message, __FILE__, __LINE__);
  }
  std::atomic<uint32_t> handleAtStart = 0;
  std::atomic<bool> armedAtStart = false;
};

TEST(MsgqStarted, TheFirstHandlerKnowsTheQueuesHandle) {
  for (int round = 0; round < 2000; ++round) {
    StartedQueue queue;
    ASSERT_TRUE(queue.Create(nullptr, 0));
    ASSERT_NE(queue.handleAtStart, 0U);
    ASSERT_EQ(queue.handleAtStart, queue.Handle());
    ASSERT_TRUE(queue.armedAtStart);
  }
}

}  // namespace
