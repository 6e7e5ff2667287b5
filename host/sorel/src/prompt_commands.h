// The prompt's own commands, which begin with a dot. Script thread.
#ifndef SOREL_PROMPT_COMMANDS_H
#define SOREL_PROMPT_COMMANDS_H

#include <string>
#include <vector>

#include "method_help.h"

namespace sorel {

constexpr char kHelpOfMethod[] = ".help ";

// What the typings say of methods and globals; read once.
const std::vector<MethodHelp>& AllHelp();

// A dot and a letter; ".5" is script.
bool IsCommand(const std::string& line);
void RunCommand(std::string line);

}  // namespace sorel

#endif
