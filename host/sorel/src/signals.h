// SIGINT and SIGTERM: the first asks the host to end with 128 + signal, a later one ends the process on the
// spot. An interrupt that finds something else to end leaves the host alone.
#ifndef SOREL_SIGNALS_H
#define SOREL_SIGNALS_H

namespace sorel {

// First of all, before there are other threads: from here on the signals wait for their one thread and interrupt no
// other, not the engine's either.
void HoldSignals();
// Once, when the runtime exists: starts that thread. `restore` is called before the process ends on the spot;
// `interrupt` for a SIGINT, and when it gives true, that was all.
void CatchSignals(void (*restore)(), bool (*interrupt)());

}  // namespace sorel

#endif
