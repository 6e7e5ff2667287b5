// SIGINT and SIGTERM: the first asks the host to end with 128 + signal, a later one ends the process on the
// spot.
#ifndef SOREL_SIGNALS_H
#define SOREL_SIGNALS_H

namespace sorel {

// Once, when the runtime exists. `restore` is called before the process ends on the spot; it must be safe
// there.
void CatchSignals(void (*restore)());

}  // namespace sorel

#endif
