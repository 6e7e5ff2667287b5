#include "keeper.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

namespace fs = std::filesystem;

namespace {

constexpr int kRequests = 3;  // the descriptor that the scripts know

// What the scripts say, with a place that outlives a reboot.
int OpenLog(const fs::path& root) {
  std::error_code error;
  fs::create_directories(root / "var/log", error);
  return open((root / "var/log/zq-system.log").c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
}

// The descriptor, or a copy of it, above those with a meaning.
int Above(int descriptor) {
  return fcntl(descriptor, F_DUPFD_CLOEXEC, kRequests + 1);
}

// A device has one system, however many programs run on it with one beside them: this one waits while another keeper
// acts. The turn is the lock of the descriptor that comes back, -1 without a log. Does not return when the lifeline
// breaks meanwhile. One that is about to end, since its program has, is not worth a word.
int AwaitTurn(const fs::path& root, int lifeline) {
  static constexpr int kLookMs = 100;
  static constexpr int kToldAfterLooks = 10;
  const int turn = Above(OpenLog(root));
  for (int looks = 0; turn >= 0 && flock(turn, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK; ++looks) {
    if (looks == kToldAfterLooks) {
      fprintf(stderr, "zqsim: another program runs on this device; its system acts for both\n");
    }
    pollfd wait = {lifeline, POLLIN, 0};
    if (poll(&wait, 1, kLookMs) > 0) _exit(0);
  }
  return turn;
}

// Events in the folder in which programs ask the system to act; -1 when there are none to be had.
int WatchRequests(const fs::path& root) {
  std::error_code error;
  fs::create_directories(root / "tmp", error);
  const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  if (watch >= 0) inotify_add_watch(watch, (root / "tmp").c_str(), IN_CREATE | IN_MOVED_TO | IN_CLOSE_WRITE);
  return watch;
}

[[noreturn]] void BecomeSystem(const KeeperTask& task, int feed, int log) {
  // Each was opened above 3, so that none of these takes another's number away.
  dup2(feed, STDIN_FILENO);
  dup2(log, STDOUT_FILENO);
  dup2(log, STDERR_FILENO);
  dup2(task.requests, kRequests);
  close_range(kRequests + 1, ~0U, 0);
  // As at a boot, whatever the tool's caller ignores or the tool blocks.
  for (int number = 1; number < NSIG; ++number) signal(number, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  const char* const mode = task.boot ? "boot" : nullptr;
  execl(task.program.c_str(), task.program.c_str(), mode, static_cast<char*>(nullptr));
  perror(task.program.c_str());
  _exit(127);
}

// What others wait for the end of is not held open here.
void CloseAllBut(std::array<int, 4> kept) {
  std::sort(kept.begin(), kept.end());
  unsigned first = 0;
  for (const int one : kept) {
    if (one < 0) continue;
    const unsigned number = static_cast<unsigned>(one);
    if (number > first) close_range(first, number - 1, 0);
    first = number + 1;
  }
  close_range(first, ~0U, 0);
}

void Feed(int watch, int feed) {
  char events[4096];
  while (read(watch, events, sizeof(events)) > 0) {
  }
  // A pipe that is full already says that there is something to do.
  [[maybe_unused]] const ssize_t written = write(feed, "\n", 1);
}

}  // namespace

void Keep(const KeeperTask& task) {
  setpgid(0, 0);
  signal(SIGPIPE, SIG_IGN);
  const KeeperTask mine{task.root, task.program, task.boot, Above(task.lifeline), Above(task.requests)};
  const int turn = AwaitTurn(task.root, mine.lifeline);
  const int log = Above(OpenLog(task.root));
  const int watch = Above(WatchRequests(task.root));
  int feed[2] = {-1, -1};
  if (pipe2(feed, O_CLOEXEC | O_NONBLOCK) != 0) _exit(1);
  const int scripts = Above(feed[0]);
  const int words = Above(feed[1]);
  fcntl(scripts, F_SETFL, 0);
  if (fork() == 0) BecomeSystem(mine, scripts, log);
  CloseAllBut({mine.lifeline, watch, words, turn});
  pollfd waits[2] = {{mine.lifeline, POLLIN, 0}, {watch, POLLIN, 0}};
  for (;;) {
    if (poll(waits, 2, -1) < 0) continue;
    if (waits[0].revents != 0) kill(0, SIGKILL);
    if ((waits[1].revents & POLLIN) != 0) Feed(watch, words);
  }
}
