// What the shell tool answers to its words.
#ifndef ZQ_NVRAM_TOOL_COMMANDS_H
#define ZQ_NVRAM_TOOL_COMMANDS_H

#include <string>
#include <vector>

enum ToolStatus { kToolDone = 0, kToolMissingKey = 1, kToolUsage = 2, kToolStoreFailed = 3 };

struct ToolAnswer {
  ToolStatus status;
  std::string text;     // for the standard output
  std::string trouble;  // one line for the standard error, "" when there is none
};

// `words` are the command line's without the program's name.
ToolAnswer RunTool(const std::vector<std::string>& words);

#endif
