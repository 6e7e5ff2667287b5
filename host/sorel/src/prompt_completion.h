// The Tab key at the prompt: names, methods with their arguments, the arguments of a call that is begun. Script thread.
#ifndef SOREL_PROMPT_COMPLETION_H
#define SOREL_PROMPT_COMPLETION_H

#include <string_view>

#include "jsc.h"

namespace sorel {

// For readline, which is loaded.
void SetUpCompletion(JSContextRef context);
// What was evaluated: names that it declares by const, let and class are offered from now on.
void RememberDeclared(std::string_view script);

}  // namespace sorel

#endif
