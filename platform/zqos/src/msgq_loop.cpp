// The queue's own thread.
#include "msgq_loop.h"

#include <sys/epoll.h>

#include <new>

#include "msgq_message.h"
#include "platform_trace.h"
#include "zq_thread.h"
#include "zq_timer.h"

namespace {

constexpr uint64_t kNetlinkKey = uint64_t{1} << 32;  // no socket's handle

// How many messages are handled between two looks at the descriptors while there is no end of messages.
// Someone who waits for a socket is served in turn; the interfaces' changes can wait a little.
constexpr uint32_t kMessagesPerPoll = 64;

// When there is no memory for a timer's message: the time until it is tried again.
constexpr uint64_t kRetryNs = 100'000'000;

}  // namespace

HandleTable<MsgqLoop>& QueueHandles() {
  static auto* const handles = new HandleTable<MsgqLoop>;  // never destroyed: threads use it until the end
  return *handles;
}

MsgqLoop::MsgqLoop(zq_MsgQ* owner)
    : owner_(owner), clock_(zq_ClockGet()), ended_(std::make_shared<std::latch>(1)) {}

bool MsgqLoop::Register(const char* queueName) {
  if (!poller_.IsOpen()) {
    PlatformFailure("no descriptors for queue %s", queueName);
    return false;
  }
  MSG_COMMON* const first = NewNotice(ZQ_MSG_QUEUE_STARTED, 0, 0);
  if (first == nullptr || !PostNotice(first, 0)) return false;
  first->destination = first->source = handle_ = QueueHandles().Add(shared_from_this());
  return true;
}

bool MsgqLoop::Start(const char* threadName, uint32_t stackBytes) try {
  auto self = std::make_unique<std::shared_ptr<MsgqLoop>>(shared_from_this());
  const zq_ThreadAttributes attributes{stackBytes};
  threadHandle_ = zq__beginthread(&MsgqLoop::ThreadMain, self.get(), &attributes, __FILE__, __LINE__);
  if (threadHandle_ == 0) {
    QueueHandles().Remove(handle_);
    return false;
  }
  static_cast<void>(self.release());  // the thread's
  zq_ThreadSetName(threadHandle_, threadName);
  return true;
} catch (const std::bad_alloc&) {
  QueueHandles().Remove(handle_);
  return false;
}

int32_t MsgqLoop::ThreadMain(void* start) {
  std::unique_ptr<std::shared_ptr<MsgqLoop>> self(static_cast<std::shared_ptr<MsgqLoop>*>(start));
  const std::shared_ptr<std::latch> ended = (*self)->ended_;
  (*self)->Run();
  self.reset();
  ended->count_down();
  return 0;
}

void MsgqLoop::Run() {
  OpenNetlink();
  clock_->AddWaker(poller_.WakerDescriptor());
  std::unique_lock lock(mutex_);
  thread_ = std::this_thread::get_id();
  while (!discard_) {
    if (PollIsDue()) Poll(lock, false);
    MSG_COMMON* const message = TakeNext();
    if (message != nullptr) {
      inHand_ = true;
      ++sincePoll_;
      lock.unlock();
      owner_->MessageHandler(message);
      lock.lock();
      inHand_ = false;
      if (!started_ || agenda_.PostsEmpty()) {
        started_ = true;
        changed_.notify_all();
      }
    } else if (closed_) {
      break;
    } else {
      Poll(lock, true);
    }
  }
  agenda_.Clear();
  started_ = finished_ = true;
  changed_.notify_all();
  lock.unlock();
  clock_->RemoveWaker(poller_.WakerDescriptor());
}

void MsgqLoop::OpenNetlink() {
  if (netlink_.Open()) poller_.Watch(netlink_.Descriptor(), EPOLLIN, kNetlinkKey);
}

bool MsgqLoop::PollIsDue() const {
  return sincePoll_ >= (sockets_.empty() ? kMessagesPerPoll : 1);
}

MSG_COMMON* MsgqLoop::TakeNext() {
  const auto next = agenda_.Decide([this] { return clock_->MonotonicNs(); });
  if (next == MsgqAgenda::Next::kNothing) return nullptr;
  if (next == MsgqAgenda::Next::kPost) return agenda_.TakePost();
  MSG_COMMON* const message = NewNotice(ZQ_MSG_TIMER, 0, 0);
  const uint64_t now = clock_->MonotonicNs();
  if (message == nullptr) {
    const MsgqAgenda::Timer& timer = agenda_.PostponeTimer(now + kRetryNs);
    PlatformFailure("timer \"%s\" is late for want of memory", timer.name.c_str());
    return TakeNext();  // others may wait behind it
  }
  const auto [id, param] = agenda_.TakeTimer(now);
  message->param1 = id;
  message->param2 = param;
  return message;
}

// Looks at the descriptors; with `wait` only after something has happened or the next timer is due.
void MsgqLoop::Poll(std::unique_lock<std::mutex>& lock, bool wait) {
  sincePoll_ = 0;
  const uint64_t deadline = agenda_.NextDeadline();
  waiting_ = wait;
  sleepsUntil_ = deadline;
  lock.unlock();
  const auto events = poller_.Wait(wait ? clock_->PollTimeoutMs(deadline) : 0);
  const bool interfacesChanged = ReadNetlink(events);
  lock.lock();
  waiting_ = false;
  if (interfacesChanged) ReportInterfaces();
  for (const MsgqPoller::Event& event : events) {
    if (event.key < kNetlinkKey) ReportSocket(static_cast<uint32_t>(event.key), event.events);
  }
}

bool MsgqLoop::ReadNetlink(std::span<const MsgqPoller::Event> events) {
  for (const MsgqPoller::Event& event : events) {
    if (event.key != kNetlinkKey) continue;
    const NetlinkWatch::News news = netlink_.Read();
    if (news == NetlinkWatch::News::kBroken) poller_.Forget(netlink_.Descriptor());
    return news == NetlinkWatch::News::kChanged;
  }
  return false;
}

void MsgqLoop::ReportInterfaces() {
  if (quiet_ || closed_) {
    poller_.Forget(netlink_.Descriptor());
    return;
  }
  PostNotice(NewNotice(ZQ_MSG_NEW_INTERFACES, 0, 0), 0);
}

// A socket that was forgotten meanwhile is not found.
void MsgqLoop::ReportSocket(uint32_t handle, uint32_t events) {
  const auto found = sockets_.find(handle);
  if (found == sockets_.end()) return;
  // First the message: what the socket says is said once.
  MSG_COMMON* const notice = NewNotice(ZQ_MSG_SOCKET_CONNECTED, handle, 0);
  if (notice == nullptr) return;
  SocketClient& socket = *found->second;
  SocketClient::News news = socket.OnEvents(events);
  if (news == SocketClient::News::kNone) {
    zq__free(notice, __FILE__, __LINE__);
    return;
  }
  if (news == SocketClient::News::kConnected) {
    poller_.Change(socket.Descriptor(), socket.Interest(), handle);
  } else {
    notice->type = ZQ_MSG_SOCKET_FAILED;
    poller_.Forget(socket.Descriptor());
    sockets_.erase(found);
  }
  PostNotice(notice, handle);
}
