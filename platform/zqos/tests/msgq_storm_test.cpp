// Queues that end while other threads post to them, set their timers and open sockets on them.
#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "loopback_listener.h"
#include "recording_queue.h"
#include "zq_memory.h"
#include "zq_msgq.h"
#include "zq_socket.h"
#include "zq_timer.h"

namespace {

constexpr uint32_t kPost = 1000;
constexpr uint32_t kEnd = 1001;

// Notices when a message comes after its end, and uses what is gone then (which the sanitizers notice).
class MortalQueue : public zq_MsgQ {
 public:
  MortalQueue() : zq_MsgQ("mortal", nullptr), life_(std::make_unique<uint32_t>(0)) {}
  ~MortalQueue() override { Destroy(true); }

  void MessageHandler(MSG_COMMON* message) override {
    ++*life_;
    const uint32_t type = message->type;
    const uint32_t socket = message->param1;
    zq__free(message, __FILE__, __LINE__);
    if (type == ZQ_MSG_SOCKET_CONNECTED || type == ZQ_MSG_SOCKET_FAILED) zq_SocketClose(socket);
    if (type == kEnd) Destroy(true);
  }

  // What handlers use, taken down after Drain or Destroy.
  void TakeDown() { life_.reset(); }

 private:
  std::unique_ptr<uint32_t> life_;
};

// Threads that work on one queue after another, each until it is refused.
class Storm {
 public:
  Storm() {
    for (uint32_t i = 0; i < 2; ++i) threads_.emplace_back([this, i] { PostAndSet(i); });
    threads_.emplace_back([this] { Connect(); });
  }
  Storm(const Storm&) = delete;
  Storm& operator=(const Storm&) = delete;
  ~Storm() {
    queue_ = kOver;
    queue_.notify_all();
    for (std::thread& thread : threads_) thread.join();
  }

  // Returns when every thread is at work on the queue.
  void TurnTo(uint32_t queue) {
    begun_ = 0;
    queue_ = queue;
    queue_.notify_all();
    for (uint32_t begun = 0; begun < threads_.size(); begun = begun_) begun_.wait(begun);
  }

 private:
  static constexpr uint32_t kOver = UINT32_MAX;

  // The queue after `last`, or kOver.
  uint32_t Next(uint32_t last) {
    queue_.wait(last);
    return queue_;
  }

  void Begun() {
    ++begun_;
    begun_.notify_all();
  }

  void PostAndSet(uint32_t number) {
    uint32_t queue = 0;
    while ((queue = Next(queue)) != kOver) {
      bool taken = true;
      for (uint32_t i = 0; taken; ++i) {
        if (i == 10) Begun();
        taken = Post(queue, kPost, i, 0, i % 5 == 0);
        zq_TimerSet(queue, i % 3, i % 7, number, 0, 0, "storm", i % 2 == 0);
        zq_TimerKill(queue, (i + 3) % 7, 0, 0);
        zq_TimerNextDue(queue);
        // Not so much that the end of the queue is a matter of minutes.
        while (zq_MsgQPending(queue) > 50) sched_yield();
      }
    }
  }

  // One connection a queue: each takes a port of the machine for a minute.
  void Connect() {
    uint32_t queue = 0;
    while ((queue = Next(queue)) != kOver) {
      Begun();
      const uint32_t socket = zq_SocketOpenTcpClient(queue, "127.0.0.1", server_.Port(), __FILE__, __LINE__);
      if (socket != 0) close(server_.Accept());
      zq_SocketClose(socket);
    }
  }

  LoopbackListener server_;
  std::atomic<uint32_t> queue_ = 0;
  std::atomic<uint32_t> begun_ = 0;
  std::vector<std::thread> threads_;
};

TEST(MsgqStormTest, AQueueEndsInTheMidstOfEverythingAThousandTimes) {
  Storm storm;
  for (int i = 0; i < 1000; ++i) {
    MortalQueue queue;
    ASSERT_TRUE(queue.Create(nullptr, 0));
    const uint32_t handle = queue.Handle();
    storm.TurnTo(handle);
    switch (i % 5) {
      case 0:
        queue.Destroy(true);
        break;
      case 1:
        queue.Destroy(false);
        break;
      case 2:
        queue.Drain();
        queue.TakeDown();
        queue.Destroy(false);
        break;
      case 3: {
        std::thread other([&queue] { queue.Drain(); });
        queue.Destroy(i % 2 == 0);
        other.join();
        break;
      }
      default:
        Post(handle, kEnd);
        queue.Destroy(false);
        break;
    }
    queue.TakeDown();
    ASSERT_FALSE(Post(handle, kPost));
  }
}

}  // namespace
