#include "output.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "script_thread.h"

namespace sorel {

void SetUpOutput() {
  if (isatty(STDOUT_FILENO) != 0) setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
  at_quick_exit(FlushOutput);
}

void WriteLine(const std::string& text, bool toStderr) {
  const std::string line = text + "\n";
  // What was printed before an error stands before it.
  if (toStderr) FlushOutput();
  fwrite(line.data(), 1, line.size(), toStderr ? stderr : stdout);
  // The loop, which flushes for the script thread, does not know when another thread printed.
  if (!toStderr && !OnScriptThread()) FlushOutput();
}

void FlushOutput() { fflush(stdout); }

}  // namespace sorel
