#include "output.h"

#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

#include "runtime.h"

namespace sorel {
namespace {

constexpr char kToLineStart[] = "\r\033[K";
std::atomic<bool> g_abovePrompt{false};
std::atomic<bool> g_disturbed{false};

}  // namespace

void SetUpOutput() {
  if (isatty(STDOUT_FILENO) != 0) setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
  at_quick_exit(FlushOutput);
}

void WriteLine(const std::string& text, bool toStderr) {
  const bool abovePrompt = g_abovePrompt.load();
  const std::string line = (abovePrompt ? kToLineStart : "") + text + "\n";
  // What was printed before an error stands before it.
  if (toStderr) FlushOutput();
  fwrite(line.data(), 1, line.size(), toStderr ? stderr : stdout);
  // The loop, which flushes for the script thread, does not know when another thread printed.
  if (!toStderr && !OnScriptThread()) FlushOutput();
  if (!abovePrompt) return;
  g_disturbed.store(true);
  Runtime::Get().Wake();
}

void ShowAbovePrompt(bool on) {
  g_abovePrompt.store(on);
}
bool TakeDisturbed() {
  return g_disturbed.exchange(false);
}

void FlushOutput() {
  fflush(stdout);
}

}  // namespace sorel
