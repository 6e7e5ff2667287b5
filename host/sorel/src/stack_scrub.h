// The collector takes every word on the stack for a reference. What a script left below is cleared before anything
// else is called that may leave parts of it uncovered in its own frame, so that dropped objects are found.
#ifndef SOREL_STACK_SCRUB_H
#define SOREL_STACK_SCRUB_H

namespace sorel {

void ScrubStack();

}  // namespace sorel

#endif
