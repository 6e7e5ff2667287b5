#include "no_more_threads.h"

#include <dlfcn.h>

#include <atomic>

#include "zq_thread.h"

namespace {

std::atomic<bool> g_noMoreThreads = false;

}  // namespace

extern "C" __attribute__((visibility("default"))) uint32_t zq__beginthread(
    zq_ThreadFunction function, void* argument, const zq_ThreadAttributes* attributes, const char* file,
    int line) {
  if (g_noMoreThreads) return 0;
  static const auto next = reinterpret_cast<decltype(&zq__beginthread)>(dlsym(RTLD_NEXT, "zq__beginthread"));
  return next(function, argument, attributes, file, line);
}

NoMoreThreads::NoMoreThreads() {
  g_noMoreThreads = true;
}

NoMoreThreads::~NoMoreThreads() {
  g_noMoreThreads = false;
}
