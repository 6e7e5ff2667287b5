// One created queue, from Create to the end of its thread: what its thread and everybody who posts to it
// share.
//
//   running --Drain--> quiet --End--> closed --> thread ended
//      |                                ^
//      +-------------End----------------+
//
// running  posts and timers are taken and handled
// quiet    what waited is handled; later posts, timers and sockets are refused
// closed   nothing is taken any more; what waited is handled or, with `discard_`, freed
#ifndef ZQ_MSGQ_LOOP_H
#define ZQ_MSGQ_LOOP_H

#include <condition_variable>
#include <cstdint>
#include <latch>
#include <memory>
#include <mutex>
#include <span>
#include <thread>
#include <unordered_map>

#include "msgq_agenda.h"
#include "msgq_handles.h"
#include "msgq_poller.h"
#include "netlink_watch.h"
#include "socket_client.h"
#include "zq_clock.h"
#include "zq_msgq.h"

// Any thread, unless said otherwise. What allocates may throw std::bad_alloc.
class MsgqLoop : public std::enable_shared_from_this<MsgqLoop> {
 public:
  // `owner` handles the messages; it is not touched after the thread has ended, nor after an End from one of
  // its own handlers once that handler has returned.
  explicit MsgqLoop(zq_MsgQ* owner);

  // Once, first: gives the queue its handle. False, traced, when the system gives no descriptor.
  bool Register(const char* queueName);
  // Once, then. False when the system gives no thread (traced) or memory; the handle is gone then. Throws
  // nothing.
  bool Start(const char* threadName, uint32_t stackBytes);
  // Returns when the queue-started message was handled.
  void AwaitStarted();
  bool HasEnded() const { return ended_->try_wait(); }
  // As zq_MsgQ's Drain and Destroy.
  void Drain();
  void End(bool discard);
  uint32_t Handle() const { return handle_; }
  uint32_t ThreadHandle() const { return threadHandle_; }

  // Takes the message over, unless it returns false: the queue is closed.
  bool Post(MSG_COMMON* message, bool inFront);
  uint32_t Pending();

  // False when the queue takes no timers any more.
  bool Arm(uint32_t id, uint32_t milliseconds, uintptr_t param, const char* name, bool repeat);
  // False when it was not armed.
  bool Disarm(uint32_t id);
  // In milliseconds, rounded up; ZQ_TIMER_NOT_ARMED for a timer that is not armed, or none at all.
  uint32_t TimerRemaining(uint32_t id);
  uint32_t NextTimerRemaining();

  // Reports a socket, which has begun to connect or has `failed` at that already, under its handle. False
  // when the queue takes none any more.
  bool Watch(uint32_t handle, const std::shared_ptr<SocketClient>& socket, bool failed);
  // No report of it comes any more.
  void Forget(uint32_t handle);

 private:
  static int32_t ThreadMain(void* start);
  void Run();
  void OpenNetlink();
  void Poll(std::unique_lock<std::mutex>& lock, bool wait);
  bool ReadNetlink(std::span<const MsgqPoller::Event> events);

  // The lock is held in these.
  bool PollIsDue() const;
  MSG_COMMON* TakeNext();
  void ReportInterfaces();
  void ReportSocket(uint32_t handle, uint32_t events);
  // Takes the notice over; null is ignored. False when there is no memory.
  bool PostNotice(MSG_COMMON* notice, uint32_t socket);
  MSG_COMMON* NewNotice(uint32_t type, uint32_t param1, uintptr_t param2) const;
  void ForgetSockets();
  uint64_t NowIfTimersArmed() const;
  bool TakeWaiting();

  zq_MsgQ* const owner_;
  zq_Clock* const clock_;
  MsgqPoller poller_;
  uint32_t handle_ = 0;
  uint32_t threadHandle_ = 0;
  const std::shared_ptr<std::latch> ended_;  // apart, for the thread lets go of this object before it says so

  NetlinkWatch netlink_;  // queue thread only
  uint32_t sincePoll_ = 0;

  std::mutex mutex_;
  std::condition_variable changed_;  // started_, idle or finished_
  MsgqAgenda agenda_;
  std::unordered_map<uint32_t, std::shared_ptr<SocketClient>> sockets_;  // those with reports to come
  std::thread::id thread_;
  uint64_t sleepsUntil_ = 0;  // while waiting_: the deadline that the thread knows of
  bool waiting_ = false;      // the thread is about to sleep or asleep, and nobody has woken it yet
  bool inHand_ = false;
  bool started_ = false;
  bool quiet_ = false;
  bool closed_ = false;
  bool discard_ = false;
  bool finished_ = false;
};

// The handles of the queues that take posts.
HandleTable<MsgqLoop>& QueueHandles();

#endif
