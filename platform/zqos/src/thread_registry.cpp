#include "thread_registry.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "thread_signals.h"

namespace {

// A detached thread's attributes.
class Attributes {
 public:
  explicit Attributes(size_t stackBytes) {
    pthread_attr_init(&value_);
    pthread_attr_setdetachstate(&value_, PTHREAD_CREATE_DETACHED);
    if (stackBytes == 0) return;
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t least = static_cast<size_t>(sysconf(_SC_THREAD_STACK_MIN));
    const size_t size = std::max(stackBytes, least);
    const size_t rest = size % page;
    size_t rounded = size;
    if (rest != 0 && __builtin_add_overflow(size, page - rest, &rounded)) rounded = SIZE_MAX - page + 1;
    pthread_attr_setstacksize(&value_, rounded);
  }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  ~Attributes() { pthread_attr_destroy(&value_); }
  const pthread_attr_t* Get() const { return &value_; }

 private:
  pthread_attr_t value_{};
};

// Blocks the signals in the calling thread for its lifetime: a thread that is started meanwhile inherits
// that, and there is no moment at which it could take one.
class BlockedSignals {
 public:
  BlockedSignals() {
    const sigset_t blocked = SignalsToBlock(EngineSignal(getenv("JSC_SIGNAL_FOR_GC")));
    pthread_sigmask(SIG_SETMASK, &blocked, &before_);
  }
  BlockedSignals(const BlockedSignals&) = delete;
  BlockedSignals& operator=(const BlockedSignals&) = delete;
  ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_{};
};

void* HandleAsPointer(uint32_t handle) {
  return reinterpret_cast<void*>(static_cast<uintptr_t>(handle));
}
uint32_t HandleFromPointer(const void* pointer) {
  return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(pointer));
}

}  // namespace

struct ThreadRegistry::Launch {
  zq_ThreadFunction function;
  void* argument;
  uint32_t handle;
};

ThreadRegistry& ThreadRegistry::Get() {
  static auto* const registry = new ThreadRegistry;
  return *registry;
}

// The key's destructor runs after those of the thread's C++ thread_local objects, and however the thread
// ends.
ThreadRegistry::ThreadRegistry() {
  noKey_ = pthread_key_create(&ownHandle_, &ThreadRegistry::Ended);
}

uint32_t ThreadRegistry::Start(zq_ThreadFunction function, void* argument, size_t stackBytes, int* error) {
  if (noKey_ != 0) {
    *error = noKey_;
    return 0;
  }
  const Attributes attributes(stackBytes);
  auto launch = std::make_unique<Launch>(Launch{function, argument, 0});
  // Held over the creation, so that the entry is complete before the thread can end.
  const std::lock_guard lock(mutex_);
  const uint32_t handle = launch->handle = FreeHandle();
  size_t& running = running_[function];
  Entry& entry = alive_.insert({handle, {function, {}, false, {}}}).first->second;
  {
    const BlockedSignals blocked;
    *error = pthread_create(&entry.thread, attributes.Get(), &ThreadRegistry::Run, launch.get());
  }
  if (*error != 0) {
    alive_.erase(handle);
    return 0;
  }
  static_cast<void>(launch.release());  // the thread's
  ++running;
  return handle;
}

void* ThreadRegistry::Run(void* argument) {
  auto* const launch = static_cast<Launch*>(argument);
  const Launch own = *launch;
  delete launch;
  void* const handle = HandleAsPointer(own.handle);
  const bool endsByKey = pthread_setspecific(Get().ownHandle_, handle) == 0;
  Get().Begin(own.handle);
  own.function(own.argument);
  if (!endsByKey) Ended(handle);
  return nullptr;
}

void ThreadRegistry::Begin(uint32_t handle) {
  const std::lock_guard lock(mutex_);
  Entry& entry = alive_.find(handle)->second;
  entry.begun = true;
  if (entry.name) pthread_setname_np(pthread_self(), entry.name->c_str());
}

void ThreadRegistry::Ended(void* handle) {
  ThreadRegistry& registry = Get();
  const std::lock_guard lock(registry.mutex_);
  const auto entry = registry.alive_.find(HandleFromPointer(handle));
  if (entry == registry.alive_.end()) return;
  const auto running = registry.running_.find(entry->second.function);
  if (--running->second == 0) registry.running_.erase(running);
  registry.alive_.erase(entry);
  registry.ended_.notify_all();
}

void ThreadRegistry::SetName(uint32_t handle, const char* name) {
  char kept[16];
  snprintf(kept, sizeof kept, "%s", name);
  if (handle == 0) {
    pthread_setname_np(pthread_self(), kept);
    return;
  }
  const std::lock_guard lock(mutex_);
  const auto entry = alive_.find(handle);
  if (entry == alive_.end()) return;
  // A thread names itself with less than another does: that goes by /proc, and leaves entries of it there for the
  // system to clear away when the process has ended.
  if (entry->second.begun) {
    pthread_setname_np(entry->second.thread, kept);
  } else {
    entry->second.name = kept;
  }
}

bool ThreadRegistry::AwaitEnd(zq_ThreadFunction function, uint32_t milliseconds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  std::unique_lock lock(mutex_);
  const auto own = alive_.find(HandleFromPointer(pthread_getspecific(ownHandle_)));
  const size_t callers = own != alive_.end() && own->second.function == function ? 1 : 0;
  return ended_.wait_until(lock, deadline, [&] {
    const auto running = running_.find(function);
    return running == running_.end() || running->second <= callers;
  });
}

uint32_t ThreadRegistry::FreeHandle() {
  do {
    ++lastHandle_;
  } while (lastHandle_ == 0 || alive_.count(lastHandle_) > 0);
  return lastHandle_;
}
