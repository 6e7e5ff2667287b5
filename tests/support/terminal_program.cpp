#include "terminal_program.h"

#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <utmp.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "child_process.h"

namespace {

constexpr int kNoProgram = 127;

int BecomeProgram(int terminal, std::vector<std::string> words, std::vector<std::string> environment) {
  login_tty(terminal);
  for (std::string& variable : environment) putenv(variable.data());
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  execvp(arguments[0], arguments.data());
  perror(arguments[0]);
  return kNoProgram;
}

}  // namespace

TerminalProgram::TerminalProgram(const std::vector<std::string>& words,
                                 const std::vector<std::string>& environment) {
  const winsize size = {50, 200, 0, 0};
  if (openpty(&terminal_, &held_, nullptr, nullptr, &size) != 0) throw std::runtime_error("no terminal");
  child_ = InChild([&] {
    close(terminal_);
    return BecomeProgram(held_, words, environment);
  });
}

TerminalProgram::~TerminalProgram() {
  if (child_ > 0) {
    kill(child_, SIGKILL);
    AwaitChild(child_);
  }
  close(held_);
  close(terminal_);
}

bool TerminalProgram::Await(const std::string& text) {
  for (;;) {
    const size_t found = screen_.find(text, seen_);
    if (found != std::string::npos) {
      seen_ = found + text.size();
      return true;
    }
    if (!ReadMore()) return false;
  }
}

void TerminalProgram::Type(const std::string& keys) {
  if (write(terminal_, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size())) {
    throw std::runtime_error("the terminal takes no more");
  }
}

void TerminalProgram::Signal(int number) const {
  kill(child_, number);
}

bool TerminalProgram::HasEnded() const {
  siginfo_t info{};
  return waitid(P_PID, static_cast<id_t>(child_), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
         info.si_pid == child_;
}

int TerminalProgram::AwaitEnd() {
  while (ReadMore()) {
  }
  const int status = AwaitChild(child_);
  child_ = -1;
  return status;
}

bool TerminalProgram::IsRaw() const {
  termios settings{};
  return tcgetattr(held_, &settings) == 0 && (settings.c_lflag & ICANON) == 0;
}

void TerminalProgram::Stop() const {
  int status = 0;
  if (kill(child_, SIGSTOP) != 0 || waitpid(child_, &status, WUNTRACED) != child_ || !WIFSTOPPED(status)) {
    throw std::runtime_error("it does not stop");
  }
}

void TerminalProgram::MakeCooked() const {
  termios settings{};
  if (tcgetattr(held_, &settings) != 0) throw std::runtime_error("no terminal");
  settings.c_lflag |= ICANON | ECHO;
  settings.c_iflag |= ICRNL;
  if (tcsetattr(held_, TCSANOW, &settings) != 0) throw std::runtime_error("no terminal");
}

// As this side of the terminal is held open, its end is not seen: the child's is asked for besides.
bool TerminalProgram::ReadMore() {
  constexpr int kAskMs = 20;
  for (;;) {
    pollfd ready = {terminal_, POLLIN, 0};
    if (poll(&ready, 1, kAskMs) > 0 && (ready.revents & POLLIN) != 0) {
      char bytes[4096];
      const ssize_t count = read(terminal_, bytes, sizeof bytes);
      if (count <= 0) return false;
      screen_.append(bytes, static_cast<size_t>(count));
      return true;
    }
    if (HasEnded()) {
      ready.revents = 0;
      if (poll(&ready, 1, 0) == 0) return false;
    }
  }
}
