#include "prompt.h"

namespace sorel {

void RunPrompt(JSContextRef context, Loop& loop) { loop.Run(context); }
void RestoreTerminal() {}

}  // namespace sorel
