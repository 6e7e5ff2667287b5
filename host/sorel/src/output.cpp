#include "output.h"

#include <poll.h>
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

// What the end of the process waits for a reader that takes nothing.
constexpr int kLastWordsMs = 1000;
constexpr int kLookMs = 10;

// On whichever thread ends the process. The script thread may sit in a write to a reader that is stuck, with the
// stream's lock held: a module that ends the device's process for a new start is not kept from it.
void SayLastWords() {
  for (int waited = 0; ftrylockfile(stdout) != 0; waited += kLookMs) {
    if (waited >= kLastWordsMs) return;
    usleep(kLookMs * 1000);
  }
  // A pipe that can be written takes a page, which is all that the stream holds back for one.
  pollfd reader{STDOUT_FILENO, POLLOUT, 0};
  if (poll(&reader, 1, kLastWordsMs) == 1) fflush_unlocked(stdout);
  funlockfile(stdout);
}

}  // namespace

void SetUpOutput() {
  if (isatty(STDOUT_FILENO) != 0) setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
  at_quick_exit(SayLastWords);
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
