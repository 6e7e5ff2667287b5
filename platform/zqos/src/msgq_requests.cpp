// What other threads ask of a queue.
#include <algorithm>
#include <new>

#include "msgq_loop.h"
#include "msgq_message.h"
#include "platform_trace.h"
#include "zq_timer.h"

namespace {

// Rounded up; what is due or overdue is 0.
uint32_t MillisecondsUntil(uint64_t instant, uint64_t now) {
  constexpr uint64_t kNsPerMs = 1'000'000;
  if (instant <= now) return 0;
  const uint64_t milliseconds = (instant - now - 1) / kNsPerMs + 1;
  return static_cast<uint32_t>(std::min<uint64_t>(milliseconds, ZQ_TIMER_NOT_ARMED - 1));
}

}  // namespace

void MsgqLoop::AwaitStarted() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return started_; });
}

void MsgqLoop::Drain() {
  std::unique_lock lock(mutex_);
  if (!quiet_) {
    quiet_ = true;
    agenda_.Hold();
    ForgetSockets();
  }
  if (thread_ == std::this_thread::get_id()) return;
  changed_.wait(lock, [this] { return finished_ || (agenda_.PostsEmpty() && !inHand_); });
}

void MsgqLoop::End(bool discard) {
  bool wake = false;
  bool own = false;
  {
    const std::lock_guard lock(mutex_);
    own = thread_ == std::this_thread::get_id();
    closed_ = true;
    // After its own handler the owner may be gone: nobody is left to handle what waits.
    discard_ = discard_ || discard || own;
    agenda_.DisarmAll();
    ForgetSockets();
    wake = TakeWaiting();
  }
  QueueHandles().Remove(handle_);
  if (wake) poller_.Wake();
  if (!own) ended_->wait();
}

bool MsgqLoop::Post(MSG_COMMON* message, bool inFront) {
  bool wake = false;
  {
    const std::lock_guard lock(mutex_);
    if (closed_ || quiet_) return false;
    agenda_.Post(message, inFront, NowIfTimersArmed(), 0);
    wake = TakeWaiting();
  }
  if (wake) poller_.Wake();
  return true;
}

uint32_t MsgqLoop::Pending() {
  const std::lock_guard lock(mutex_);
  return static_cast<uint32_t>(agenda_.Pending(NowIfTimersArmed())) + (inHand_ ? 1 : 0);
}

bool MsgqLoop::Arm(uint32_t id, uint32_t milliseconds, uintptr_t param, const char* name, bool repeat) {
  bool wake = false;
  {
    const std::lock_guard lock(mutex_);
    if (closed_ || quiet_) return false;
    agenda_.Arm(id, clock_->MonotonicNs(), milliseconds, param, name, repeat);
    wake = agenda_.NextDeadline() < sleepsUntil_ && TakeWaiting();
  }
  if (wake) poller_.Wake();
  return true;
}

bool MsgqLoop::Disarm(uint32_t id) {
  const std::lock_guard lock(mutex_);
  return agenda_.Disarm(id);
}

uint32_t MsgqLoop::TimerRemaining(uint32_t id) {
  const std::lock_guard lock(mutex_);
  const MsgqAgenda::Timer* const timer = agenda_.FindTimer(id);
  return timer == nullptr ? ZQ_TIMER_NOT_ARMED : MillisecondsUntil(timer->deadline, clock_->MonotonicNs());
}

uint32_t MsgqLoop::NextTimerRemaining() {
  const std::lock_guard lock(mutex_);
  if (!agenda_.TimersArmed()) return ZQ_TIMER_NOT_ARMED;
  return MillisecondsUntil(agenda_.NextDeadline(), clock_->MonotonicNs());
}

bool MsgqLoop::Watch(uint32_t handle, const std::shared_ptr<SocketClient>& socket, bool failed) {
  const std::lock_guard lock(mutex_);
  if (closed_ || quiet_) return false;
  if (failed) return PostNotice(NewNotice(ZQ_MSG_SOCKET_FAILED, handle, 0), handle);
  sockets_.emplace(handle, socket);
  if (poller_.Watch(socket->Descriptor(), socket->Interest(), handle)) return true;
  PlatformFailure("a socket cannot be watched");
  sockets_.erase(handle);
  return false;
}

void MsgqLoop::Forget(uint32_t handle) {
  const std::lock_guard lock(mutex_);
  agenda_.ForgetSocket(handle);
  const auto found = sockets_.find(handle);
  if (found == sockets_.end()) return;
  poller_.Forget(found->second->Descriptor());
  sockets_.erase(found);
}

bool MsgqLoop::PostNotice(MSG_COMMON* notice, uint32_t socket) try {
  if (notice == nullptr) return false;
  agenda_.Post(notice, false, NowIfTimersArmed(), socket);
  if (TakeWaiting()) poller_.Wake();
  return true;
} catch (const std::bad_alloc&) {
  PlatformFailure("no memory for a notice of type %u", notice->type);
  zq__free(notice, __FILE__, __LINE__);
  return false;
}

MSG_COMMON* MsgqLoop::NewNotice(uint32_t type, uint32_t param1, uintptr_t param2) const {
  return NewMessage({handle_, handle_, 0, type, param1, param2, 0}, __FILE__, __LINE__);
}

void MsgqLoop::ForgetSockets() {
  for (const auto& [handle, socket] : sockets_) poller_.Forget(socket->Descriptor());
  sockets_.clear();
}

uint64_t MsgqLoop::NowIfTimersArmed() const {
  return agenda_.TimersArmed() ? clock_->MonotonicNs() : 0;
}

// True once for each sleep of the thread: whoever gets it wakes the thread. In a burst of posts only the
// first pays.
bool MsgqLoop::TakeWaiting() {
  const bool waiting = waiting_;
  waiting_ = false;
  return waiting;
}
