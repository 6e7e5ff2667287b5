// Message queues: one thread each, which hands messages, timer expiries and socket notices to MessageHandler
// one at a time, in the order of their instants.
//
// A queue is named by a handle (never 0). A handle whose queue is gone is refused by every function, for
// good: the number is not given out again.
#ifndef ZQ_MSGQ_H
#define ZQ_MSGQ_H

#include <cstdint>
#include <memory>

#include "zq_api.h"

// Message types that the platform posts; others belong to whoever owns the queue.
enum : uint32_t {
  ZQ_MSG_QUEUE_STARTED = 1,       // first message of a queue
  ZQ_MSG_TIMER = 256,             // first parameter: timer id; second: timer parameter
  ZQ_MSG_SOCKET_CONNECTED = 512,  // first parameter: socket handle
  ZQ_MSG_SOCKET_FAILED = 516,     // first parameter: socket handle
  ZQ_MSG_NEW_INTERFACES = 517     // the machine's network interfaces or their addresses changed
};

// One message, allocated with zq__calloc. Whoever handles it frees it with zq__free.
struct MSG_COMMON {
  uint32_t destination;  // queue handles
  uint32_t source;
  uint32_t priority;
  uint32_t type;
  uint32_t param1;
  uintptr_t param2;  // a number or a pointer, as the type says
  uintptr_t param3;
};

class zq_MsgQueueCore;

class ZQ_API zq_MsgQ {
 public:
  // Both names may be null; no thread runs yet.
  zq_MsgQ(const char* name, const char* threadName);
  zq_MsgQ(const zq_MsgQ&) = delete;
  zq_MsgQ& operator=(const zq_MsgQ&) = delete;
  // Discards what Destroy did not see. A derived class calls Destroy in its own destructor: handlers need it
  // whole.
  virtual ~zq_MsgQ();

  // Starts the queue and its thread. Returns, true, after the queue-started message was handled; false when
  // the system gives no thread or descriptor. `name` null keeps the constructor's. `stackBytes` 0: the
  // default.
  bool Create(const char* name, uint32_t stackBytes);
  // Handles what was posted until now, then no more: timers are disarmed, later posts are refused. Returns
  // when the queue's thread is idle. What the handlers use may be taken down after that. Called from a
  // handler of this queue itself it returns at once.
  void Drain();
  // Ends the queue: refuses posts and timers from now on, handles what was posted before (`discard` false) or
  // frees it unhandled (true), and returns when the thread has ended, or, called from a handler of this
  // queue, at once, the thread ending when that handler returns without touching this object again.
  void Destroy(bool discard);
  // 0 before Create and after Destroy.
  uint32_t Handle() const;
  // For traces and debuggers; copied.
  void SetName(const char* name);

  // Queue thread only. Owns the message.
  virtual void MessageHandler(MSG_COMMON* message) = 0;

 private:
  std::shared_ptr<zq_MsgQueueCore> core_;
};

extern "C" {

// Posts a message. `inFront`: ahead of what waits. `priority` is kept in the message. False, and nothing
// posted, when the destination is gone, drained, or memory is out: pointers in the parameters stay the caller's.
ZQ_API bool zq__MsgCreateCommonAndSend(uint32_t destination, uint32_t source, uint32_t type, uint32_t param1,
                                       uintptr_t param2, uintptr_t param3, bool inFront, uint32_t priority,
                                       const char* file, int line);
// Messages that wait, timers that are due, and the one in hand; 0 also for a queue that is gone.
ZQ_API uint32_t zq_MsgQPending(uint32_t queue);

}  // extern "C"

#endif
