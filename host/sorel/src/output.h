// Standard output: lines appear at once on a terminal, else when the host has nothing to do. Any thread.
#ifndef SOREL_OUTPUT_H
#define SOREL_OUTPUT_H

#include <string>

namespace sorel {

// Called once at the start; from then on the output is complete however the process ends in order
// (zq_ExitProcess), unless its reader takes nothing for a second.
void SetUpOutput();
// Writes the text and a line break.
void WriteLine(const std::string& text, bool toStderr);
void FlushOutput();

// While the prompt shows: lines take its place on the screen, and it has to be shown again below them.
void ShowAbovePrompt(bool on);
// True once after such lines.
bool TakeDisturbed();

}  // namespace sorel

#endif
