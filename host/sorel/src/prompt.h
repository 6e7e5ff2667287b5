// The prompt: lines of script typed at a terminal, with history and completion, while the loop goes on.
// Script thread.
#ifndef SOREL_PROMPT_H
#define SOREL_PROMPT_H

#include "jsc.h"
#include "loop.h"

namespace sorel {

// Shows the prompt and reads lines until the user leaves or the host is asked to end. Returns when the
// terminal is as it was.
void RunPrompt(JSContextRef context, Loop& loop);
// Any thread: has the line that is being typed dropped. False when there is none, or the last one to be dropped still
// stands: then the caller's signal ends the host.
bool DropTypedLine();
// Any thread: the process was stopped, and another one had the terminal.
void RetakeTerminal();
// Gives the terminal back at once; for the ways out that pass by RunPrompt. Safe in a signal handler.
void RestoreTerminal();

}  // namespace sorel

#endif
