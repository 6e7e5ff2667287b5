// Which signals a platform thread leaves to the process's other threads.
#ifndef ZQOS_THREAD_SIGNALS_H
#define ZQOS_THREAD_SIGNALS_H

#include <csignal>

// All signals but those that report a thread's own faults, the profiler's, and `engineSignal`.
sigset_t SignalsToBlock(int engineSignal);
// The signal that the script engine stops threads with: SIGUSR1, unless the text (the value of
// $JSC_SIGNAL_FOR_GC, may be null) is the number of another.
int EngineSignal(const char* text);

#endif
