// The platform's threads that are alive: what they run, and who waits for their end. Any thread.
#ifndef ZQOS_THREAD_REGISTRY_H
#define ZQOS_THREAD_REGISTRY_H

#include <pthread.h>

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

#include "zq_thread.h"

class ThreadRegistry {
 public:
  // Never destroyed: threads end until the process is gone.
  static ThreadRegistry& Get();

  // Starts a thread and lists it until its last destructor of thread storage. 0 and *error when the system
  // gives none. May throw std::bad_alloc.
  uint32_t Start(zq_ThreadFunction function, void* argument, size_t stackBytes, int* error);
  void SetName(uint32_t handle, const char* name);
  bool AwaitEnd(zq_ThreadFunction function, uint32_t milliseconds);

 private:
  struct Entry {
    zq_ThreadFunction function;
    pthread_t thread;
    bool begun;                       // its function is about to run, or runs
    std::optional<std::string> name;  // that it takes on then
  };
  struct Launch;

  ThreadRegistry();
  static void* Run(void* start);
  void Begin(uint32_t handle);
  static void Ended(void* handle);
  uint32_t FreeHandle();

  int noKey_ = 0;              // why the process has no key left for us
  pthread_key_t ownHandle_{};  // the thread's handle, in the threads that are the platform's
  std::mutex mutex_;
  std::condition_variable ended_;
  uint32_t lastHandle_ = 0;
  std::unordered_map<uint32_t, Entry> alive_;
  std::unordered_map<zq_ThreadFunction, size_t> running_;  // threads by function
};

#endif
