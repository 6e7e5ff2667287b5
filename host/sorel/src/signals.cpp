#include "signals.h"

#include <signal.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>

#include "runtime.h"

namespace sorel {
namespace {

Runtime* g_runtime = nullptr;
void (*g_restore)() = nullptr;
std::atomic<uint64_t> g_firstNs{0};

// One key press reaches a whole process group, and a parent may pass it on besides: that is one request, not
// two.
constexpr uint64_t kOneRequestNs = 300'000'000;

uint64_t NowNs() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<uint64_t>(now.tv_sec) * 1'000'000'000 + static_cast<uint64_t>(now.tv_nsec);
}

void OnSignal(int signal) {
  const int saved = errno;
  const uint64_t now = NowNs();
  uint64_t first = 0;
  if (g_firstNs.compare_exchange_strong(first, now)) {
    g_runtime->RequestExitBySignal(signal);
  } else if (now - first > kOneRequestNs) {
    g_restore();
    _exit(128 + signal);
  }
  errno = saved;
}

}  // namespace

void CatchSignals(void (*restore)()) {
  g_runtime = &Runtime::Get();
  g_restore = restore;
  struct sigaction action {};
  action.sa_handler = OnSignal;
  action.sa_flags = SA_RESTART;
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

}  // namespace sorel
