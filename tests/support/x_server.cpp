#include "x_server.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string_view>
#include <vector>

namespace {

constexpr int kStartMs = 60000;
constexpr int kNumberDescriptor = 3;

// This process's environment without what puts a program on a simulated device.
std::vector<char*> MachineEnvironment() {
  std::vector<char*> kept;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string_view text = *entry;
    if (!text.starts_with("LD_PRELOAD=") && !text.starts_with("ZQ_DEVICE=")) kept.push_back(*entry);
  }
  kept.push_back(nullptr);
  return kept;
}

// The server's process, which writes its display's number to the descriptor; -1 on failure.
pid_t Start(int numberPipe) {
  const char* const words[] = {"setpriv", "--pdeathsig", "TERM",      "Xvfb",      "-displayfd", "3",
                               "-screen", "0",           "640x480x8", "-nolisten", "tcp",        nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, numberPipe, kNumberDescriptor);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t process = -1;
  std::vector<char*> environment = MachineEnvironment();
  const int failed = posix_spawnp(&process, words[0], &actions, nullptr, const_cast<char* const*>(words),
                                  environment.data());
  posix_spawn_file_actions_destroy(&actions);
  return failed == 0 ? process : -1;
}

// What is written up to a line's end; "" when nothing more comes.
std::string ReadLine(int descriptor) {
  std::string line;
  for (pollfd ready{descriptor, POLLIN, 0}; poll(&ready, 1, kStartMs) > 0;) {
    char c = 0;
    if (read(descriptor, &c, 1) != 1) break;
    if (c == '\n') return line;
    line += c;
  }
  return "";
}

}  // namespace

XServer::XServer() {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return;
  // A copy onto its own number would stay marked for closing.
  const int numberPipe = fcntl(ends[1], F_DUPFD_CLOEXEC, kNumberDescriptor + 1);
  close(ends[1]);
  process_ = Start(numberPipe);
  close(numberPipe);
  const std::string number = ReadLine(ends[0]);
  close(ends[0]);
  if (!number.empty()) display_ = ":" + number;
}

XServer::~XServer() {
  End();
}

void XServer::End() {
  if (process_ <= 0) return;
  kill(process_, SIGTERM);
  waitpid(process_, nullptr, 0);
  process_ = -1;
}
