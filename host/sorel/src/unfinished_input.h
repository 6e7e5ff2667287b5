// Whether what was typed so far is the beginning of a longer piece of script. Script thread.
#ifndef SOREL_UNFINISHED_INPUT_H
#define SOREL_UNFINISHED_INPUT_H

#include <string>

#include "jsc.h"

namespace sorel {

// True when only more lines can make a script of the text: an open bracket, template or comment, an operator at the
// end. False for a script, and for a text that no line after it mends. Runs nothing.
bool IsUnfinished(JSContextRef context, const std::string& text);

}  // namespace sorel

#endif
