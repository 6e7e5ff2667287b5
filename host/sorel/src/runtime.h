// The one script engine of the process, and whether it still serves. Lives until the process is gone: threads
// of modules may call in at any time.
#ifndef SOREL_RUNTIME_H
#define SOREL_RUNTIME_H

#include <atomic>
#include <string>

#include "handles.h"
#include "jsc.h"
#include "script_thread.h"

namespace sorel {

class Runtime {
 public:
  // By the script thread, before anything else of the host asks for it.
  static void Create() { instance_ = new Runtime; }
  static Runtime& Get() { return *instance_; }
  Runtime(const Runtime&) = delete;
  Runtime& operator=(const Runtime&) = delete;

  JSGlobalContextRef Context() const { return context_; }
  JSObjectRef Global() const { return JSContextGetGlobalObject(context_); }
  HandleTable& Handles() { return handles_; }

  // False for other threads once the host is asked to end: services answer 0.
  bool Serves() const { return OnScriptThread() || !ExitRequested(); }

  // Any thread, also from within a script, which is ended. The first status counts.
  void RequestExit(int status);
  // As RequestExit, with the status of a program that the signal ended.
  void RequestExitBySignal(int signal);
  bool ExitRequested() const { return exitStatus_.load(std::memory_order_relaxed) != kRunning; }
  int ExitStatus() const { return exitStatus_.load(); }
  // Scripts are asked every tenth of a second of processor time whether they should end. The engine keeps one
  // limit for all threads, each of which has a processor time of its own: to be called where a script's
  // thread changes.
  void RestartLimit();
  // As RestartLimit, when another thread was the last to; for each return of the script thread to its script.
  void RestoreLimit() {
    if (limitElsewhere_.load(std::memory_order_relaxed) && OnScriptThread()) RestartLimit();
  }

  // A descriptor that is readable after Wake; read by the loop.
  int WakeFd() const { return wakeFd_; }
  // Any thread, signal handlers too.
  void Wake() const;
  // True once after each collection: for the loop, which finalizes.
  bool TakeCollected() { return collected_.exchange(false); }
  // Likewise, for the table of handles while no loop runs.
  bool TakeStaleHandles() { return staleHandles_.exchange(false); }

 private:
  static constexpr int kRunning = -1;
  static inline Runtime* instance_ = nullptr;

  Runtime();
  ~Runtime() = default;
  static void AfterCollection(JSContextGroupRef group, void* self);
  static bool ShouldTerminate(JSContextRef context, void* self);

  const int wakeFd_;
  const JSGlobalContextRef context_;
  HandleTable handles_;
  std::atomic<int> exitStatus_{kRunning};
  std::atomic<bool> collected_{false};
  std::atomic<bool> staleHandles_{false};
  std::atomic<bool> limitElsewhere_{false};
};

// Holds the engine's lock, so that several of its calls see one state. Jobs of the script run when it is let
// go.
class EngineLock {
 public:
  EngineLock() { JSLock(Runtime::Get().Context()); }
  EngineLock(const EngineLock&) = delete;
  EngineLock& operator=(const EngineLock&) = delete;
  ~EngineLock() { JSUnlock(Runtime::Get().Context()); }
};

}  // namespace sorel

#endif
