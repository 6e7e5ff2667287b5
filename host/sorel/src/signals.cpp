#include "signals.h"

#include <signal.h>
#include <time.h>
#include <unistd.h>

#include <cstdint>

#include "runtime.h"
#include "zq_thread.h"

namespace sorel {
namespace {

Runtime* g_runtime = nullptr;
SignalActions g_actions{};
uint64_t g_lastNs = 0;  // of the last request; 0: none yet
bool g_ending = false;

// One key press reaches a whole process group, and a parent may pass it on besides: that is one request, not
// two.
constexpr uint64_t kOneRequestNs = 300'000'000;

uint64_t NowNs() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<uint64_t>(now.tv_sec) * 1'000'000'000 + static_cast<uint64_t>(now.tv_nsec);
}

sigset_t AwaitedSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  sigaddset(&signals, SIGCONT);
  return signals;
}

void OnSignal(int signal) {
  if (signal == SIGCONT) return g_actions.resumed();
  const uint64_t now = NowNs();
  const bool again = g_lastNs != 0 && now - g_lastNs <= kOneRequestNs;
  if (again && (g_ending || signal == SIGINT)) return;
  g_lastNs = now;
  if (g_ending) {
    g_actions.restore();
    _exit(128 + signal);
  }
  if (signal == SIGINT && g_actions.interrupt()) return;
  g_ending = true;
  g_runtime->RequestExitBySignal(signal);
}

int32_t AwaitSignals(void* /*ignored*/) {
  const sigset_t signals = AwaitedSignals();
  for (;;) {
    int signal = 0;
    if (sigwait(&signals, &signal) == 0) OnSignal(signal);
  }
}

}  // namespace

void HoldSignals() {
  const sigset_t signals = AwaitedSignals();
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

void CatchSignals(const SignalActions& actions) {
  g_runtime = &Runtime::Get();
  g_actions = actions;
  if (zq__beginthread(AwaitSignals, nullptr, nullptr, "sorel", __LINE__) != 0) return;
  // Without the thread the first signal ends the process, as for any program.
  const sigset_t signals = AwaitedSignals();
  pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

}  // namespace sorel
