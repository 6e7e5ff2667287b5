#include "thread_signals.h"

#include <cstdlib>
#include <initializer_list>

sigset_t SignalsToBlock(int engineSignal) {
  sigset_t blocked;
  sigfillset(&blocked);
  for (const int open : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS, SIGPROF, engineSignal}) {
    sigdelset(&blocked, open);
  }
  return blocked;
}

int EngineSignal(const char* text) {
  if (text == nullptr) return SIGUSR1;
  char* end = nullptr;
  const long number = strtol(text, &end, 10);
  return end != text && *end == '\0' && number > 0 && number < NSIG ? static_cast<int>(number) : SIGUSR1;
}
