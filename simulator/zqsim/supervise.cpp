#include "supervise.h"

#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>

#include "launch.h"
#include "owned_descriptor.h"
#include "system_side.h"
#include "terminal_state.h"

namespace fs = std::filesystem;

namespace {

constexpr int kMostStarts = 10;  // after the first
// How long a program has to end in order when the device reboots, and the system to end the device after the program.
constexpr std::chrono::milliseconds kEndTime{5000};
constexpr std::chrono::milliseconds kSystemTime{10000};
constexpr int kPassedOn[] = {SIGTERM, SIGHUP, SIGINT, SIGQUIT, SIGUSR1, SIGUSR2};

using Clock = std::chrono::steady_clock;

// The signals come as a descriptor's news while this lives.
class SignalNews {
 public:
  SignalNews() {
    sigset_t all;
    sigemptyset(&all);
    for (const int number : kPassedOn) sigaddset(&all, number);
    sigaddset(&all, SIGCHLD);
    sigprocmask(SIG_BLOCK, &all, &before_);
    news_ = OwnedDescriptor(signalfd(-1, &all, SFD_NONBLOCK | SFD_CLOEXEC));
  }
  SignalNews(const SignalNews&) = delete;
  SignalNews& operator=(const SignalNews&) = delete;
  ~SignalNews() { Restore(); }

  void Restore() const { sigprocmask(SIG_SETMASK, &before_, nullptr); }
  int Descriptor() const { return news_.Get(); }
  bool Next(signalfd_siginfo* signal) const {
    return read(news_.Get(), signal, sizeof(*signal)) == sizeof(*signal);
  }

 private:
  sigset_t before_;
  OwnedDescriptor news_;
};

// One run of the program, from its start to its end.
class ProgramRun {
 public:
  ProgramRun(const SupervisedRun& run, const SystemSide& system, const SignalNews& signals)
      : system_(system), signals_(signals), child_(Start(run)) {}

  // The status of waitpid.
  int Await() {
    while (!ended_) Step();
    // What the system was asked for last, it does after the program.
    deadline_ = Clock::now() + kSystemTime;
    while (Listens() && system_.HasMoreToDo() && Clock::now() < deadline_) LookForRequest(100);
    LookForRequest(0);
    return *ended_;
  }
  bool Reboots() const { return reboots_; }

 private:
  pid_t Start(const SupervisedRun& run) const {
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child != 0) return child;
    signals_.Restore();
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(1);
    _exit(Become(run.program, run.command));
  }

  bool Listens() const { return !reboots_ && !alone_; }

  void Step() {
    if (child_ < 0) {
      fprintf(stderr, "zqsim: no process: %s\n", strerror(errno));
      ended_ = 1 << 8;
      return;
    }
    pollfd waits[2] = {{signals_.Descriptor(), POLLIN, 0}, {Listens() ? system_.Requests() : -1, POLLIN, 0}};
    poll(waits, 2, reboots_ ? 100 : -1);
    if (waits[1].revents != 0) LookForRequest(0);
    TakeSignals();
    if (reboots_ && !ended_ && Clock::now() >= deadline_) kill(child_, SIGKILL);
  }

  void LookForRequest(int milliseconds) {
    pollfd wait = {Listens() ? system_.Requests() : -1, POLLIN, 0};
    char text[64];
    if (poll(&wait, 1, milliseconds) <= 0) return;
    if (read(wait.fd, text, sizeof(text)) <= 0) {
      alone_ = true;
      return;
    }
    reboots_ = true;
    deadline_ = Clock::now() + kEndTime;
    if (!ended_) kill(child_, SIGTERM);
  }

  void TakeSignals() {
    signalfd_siginfo signal;
    while (signals_.Next(&signal)) {
      const int number = static_cast<int>(signal.ssi_signo);
      // A key of the terminal reaches the program by itself.
      const bool byKey = signal.ssi_code > 0;
      if (number != SIGCHLD && !byKey) kill(child_, number);
    }
    int status = 0;
    if (waitpid(child_, &status, WNOHANG) == child_) ended_ = status;
  }

  const SystemSide& system_;
  const SignalNews& signals_;
  pid_t child_;
  std::optional<int> ended_;
  bool reboots_ = false;
  bool alone_ = false;  // nothing of the system is left that could ask
  Clock::time_point deadline_{};
};

// Memory that is lost with the power.
void ForgetTemporaryFiles(const fs::path& root) {
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(root / "tmp", error)) fs::remove_all(entry.path(), error);
}

// A reboot ends whatever the program has left running; it has become this process's.
void EndOrphans() {
  const std::string place = "/proc/self/task/" + std::to_string(getpid()) + "/children";
  do {
    std::ifstream children(place);
    if (!children) return;
    for (pid_t child = 0; children >> child;) kill(child, SIGKILL);
  } while (waitpid(-1, nullptr, 0) > 0 || errno == EINTR);
}

int EndAs(int status, const SignalNews& signals) {
  if (!WIFSIGNALED(status)) return WEXITSTATUS(status);
  // The program has left its picture already.
  const rlimit none{0, 0};
  setrlimit(RLIMIT_CORE, &none);
  signals.Restore();
  signal(WTERMSIG(status), SIG_DFL);
  kill(getpid(), WTERMSIG(status));
  return 128 + WTERMSIG(status);
}

}  // namespace

int Supervise(const SupervisedRun& run) {
  const SignalNews signals;
  const TerminalState terminal;
  // What is left of the system's scripts becomes a child of this process, which waits for its end.
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  bool boot = false;
  for (int starts = 0; starts <= kMostStarts; ++starts) {
    int status = 0;
    {
      const SystemSide system(run.root, run.places, boot);
      if (!system.Runs()) return 1;
      ProgramRun program(run, system, signals);
      status = program.Await();
      boot = program.Reboots();
    }
    if (boot) {
      EndOrphans();
      ForgetTemporaryFiles(run.root);
      fprintf(stderr, "zqsim: the device reboots\n");
    } else if (!run.restartOnSuccess || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
      return EndAs(status, signals);
    }
    terminal.Restore();
  }
  fprintf(stderr, "zqsim: ended after %d new starts\n", kMostStarts);
  return 1;
}
