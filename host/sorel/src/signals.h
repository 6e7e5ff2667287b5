// SIGINT and SIGTERM: the first asks the host to end with 128 + signal, a later one ends the process on the
// spot. An interrupt that finds something else to end leaves the host alone.
#ifndef SOREL_SIGNALS_H
#define SOREL_SIGNALS_H

namespace sorel {

// First of all, before there are other threads: from here on the signals wait for their one thread and interrupt no
// other, not the engine's either.
void HoldSignals();
// Called on the thread that waits for the signals.
struct SignalActions {
  void (*restore)();    // before the process ends on the spot
  bool (*interrupt)();  // for a SIGINT; when it gives true, that was all
  void (*resumed)();    // after the process was stopped
};

// Once, when the runtime exists: starts that thread.
void CatchSignals(const SignalActions& actions);

}  // namespace sorel

#endif
