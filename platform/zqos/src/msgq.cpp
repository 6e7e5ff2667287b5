#include <atomic>
#include <mutex>
#include <new>
#include <string>

#include "msgq_loop.h"
#include "msgq_message.h"
#include "platform_trace.h"
#include "zq_msgq.h"
#include "zq_thread.h"

// What a queue object keeps: its names, and what its last Create made.
class zq_MsgQueueCore {
 public:
  std::mutex mutex;
  std::string name;
  std::string threadName;  // empty: the thread is called as the queue
  std::shared_ptr<MsgqLoop> loop;
  std::atomic<uint32_t> handle = 0;

  std::shared_ptr<MsgqLoop> Loop() {
    const std::lock_guard lock(mutex);
    return loop;
  }
  const char* ThreadName() const { return threadName.empty() ? name.c_str() : threadName.c_str(); }
};

zq_MsgQ::zq_MsgQ(const char* name, const char* threadName) : core_(std::make_shared<zq_MsgQueueCore>()) {
  if (name != nullptr) core_->name = name;
  if (threadName != nullptr) core_->threadName = threadName;
}

zq_MsgQ::~zq_MsgQ() {
  Destroy(true);
}

bool zq_MsgQ::Create(const char* name, uint32_t stackBytes) try {
  std::shared_ptr<MsgqLoop> loop;
  {
    const std::lock_guard lock(core_->mutex);
    if (core_->loop != nullptr && !core_->loop->HasEnded()) {
      PlatformFailure("queue %s is there already", core_->name.c_str());
      return false;
    }
    if (name != nullptr) core_->name = name;
    loop = std::make_shared<MsgqLoop>(this);
    if (!loop->Register(core_->ThreadName())) return false;
    // Before the thread starts: its first handler may ask for both.
    core_->loop = loop;
    core_->handle = loop->Handle();
    if (!loop->Start(core_->ThreadName(), stackBytes)) {
      core_->loop.reset();
      core_->handle = 0;
      return false;
    }
  }
  // The queue's own handler may end it and even delete this object: it is not touched any more.
  loop->AwaitStarted();
  return true;
} catch (const std::bad_alloc&) {
  PlatformFailure("no memory for a queue");
  return false;
}

void zq_MsgQ::Drain() {
  const std::shared_ptr<MsgqLoop> loop = core_->Loop();
  if (loop != nullptr) loop->Drain();
}

void zq_MsgQ::Destroy(bool discard) {
  const std::shared_ptr<zq_MsgQueueCore> core = core_;
  const std::shared_ptr<MsgqLoop> loop = core->Loop();
  if (loop == nullptr) return;
  core->handle = 0;
  loop->End(discard);
  // Its descriptors go now; after a call from its own handler a later one still has its end to wait for.
  const std::lock_guard lock(core->mutex);
  if (core->loop == loop && loop->HasEnded()) core->loop.reset();
}

uint32_t zq_MsgQ::Handle() const {
  return core_->handle;
}

void zq_MsgQ::SetName(const char* name) try {
  if (name == nullptr) return;
  const std::lock_guard lock(core_->mutex);
  core_->name = name;
  if (core_->loop != nullptr && core_->threadName.empty()) {
    zq_ThreadSetName(core_->loop->ThreadHandle(), name);
  }
} catch (const std::bad_alloc&) {
  PlatformFailure("no memory for a queue's name");
}

bool zq__MsgCreateCommonAndSend(uint32_t destination, uint32_t source, uint32_t type, uint32_t param1,
                                uintptr_t param2, uintptr_t param3, bool inFront, uint32_t priority,
                                const char* file, int line) {
  const std::shared_ptr<MsgqLoop> loop = QueueHandles().Find(destination);
  if (loop == nullptr) return false;
  MSG_COMMON* const message =
      NewMessage({destination, source, priority, type, param1, param2, param3}, file, line);
  if (message == nullptr) return false;
  try {
    if (loop->Post(message, inFront)) return true;
  } catch (const std::bad_alloc&) {
    PlatformFailure("no memory for a post (%s:%d)", SourceName(file), line);
  }
  zq__free(message, file, line);
  return false;
}

uint32_t zq_MsgQPending(uint32_t queue) {
  const std::shared_ptr<MsgqLoop> loop = QueueHandles().Find(queue);
  return loop == nullptr ? 0 : loop->Pending();
}
