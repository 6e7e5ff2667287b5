// Runs the finalizers of module objects. Script thread, from the loop: never inside a collection, the
// engine's lock not held.
#ifndef SOREL_FINALIZERS_H
#define SOREL_FINALIZERS_H

namespace sorel {

// Those of the objects found collected; how many.
int FinalizeCollected();
// Those of all objects that are left, when the host ends.
void FinalizeAll();

}  // namespace sorel

#endif
