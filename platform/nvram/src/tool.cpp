// The shell tool `nvram`.
#include <cstdio>
#include <exception>

#include "tool_commands.h"

int main(int argc, char** argv) {
  try {
    const ToolAnswer answer = RunTool({argv + 1, argv + argc});
    if (!answer.trouble.empty()) std::fprintf(stderr, "nvram: %s\n", answer.trouble.c_str());
    if (std::fwrite(answer.text.data(), 1, answer.text.size(), stdout) == answer.text.size() &&
        std::fflush(stdout) == 0)
      return answer.status;
    std::perror("nvram: cannot write to the standard output");
  } catch (const std::exception& error) {
    std::fprintf(stderr, "nvram: %s\n", error.what());
  }
  return kToolStoreFailed;
}
