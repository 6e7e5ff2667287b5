// zqsim_write HOW PATH TEXT: writes the text to the path in one of the ways that programs have. Prints the
// reason when it cannot, and ends with 1.
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

constexpr mode_t kMode = 0644;

bool ByDescriptor(const char* path, int flags, const std::string& text) {
  const int descriptor = open(path, flags, kMode);
  if (descriptor < 0) return false;
  const bool written = write(descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  return close(descriptor) == 0 && written;
}

bool ByStream(FILE* stream, const std::string& text) {
  if (stream == nullptr) return false;
  const bool written = fwrite(text.data(), 1, text.size(), stream) == text.size();
  return fclose(stream) == 0 && written;
}

// A child's standard output, opened by its file actions.
bool ByChild(const char* path, const std::string& text) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  int wrong = posix_spawn_file_actions_addopen(&actions, 1, path, O_WRONLY | O_CREAT, kMode);
  std::string script = "printf %s " + text;
  char shell[] = "sh";
  char option[] = "-c";
  char* arguments[] = {shell, option, script.data(), nullptr};
  pid_t child = 0;
  if (wrong == 0) wrong = posix_spawn(&child, "/bin/sh", &actions, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  int status = 1;
  if (wrong == 0) waitpid(child, &status, 0);
  errno = wrong;
  return wrong == 0 && status == 0;
}

// A call that succeeds leaves errno alone, although the way there asked the system more than once.
bool KeepsErrno(const char* path) {
  struct stat facts;
  errno = E2BIG;
  if (stat(path, &facts) != 0 || errno != E2BIG) return false;
  puts("kept");
  return true;
}

bool Write(const std::string& how, const char* path, const std::string& text) {
  if (how == "open") return ByDescriptor(path, O_WRONLY, text);
  if (how == "open+") return ByDescriptor(path, O_RDWR, text);
  if (how == "open-creat") return ByDescriptor(path, O_WRONLY | O_CREAT, text);
  if (how == "open-excl") return ByDescriptor(path, O_WRONLY | O_CREAT | O_EXCL, text);
  if (how == "fopen-w") return ByStream(fopen(path, "w"), text);
  if (how == "fopen-r+") return ByStream(fopen(path, "r+"), text);
  if (how == "fopen-a") return ByStream(fopen(path, "a"), text);
  if (how == "freopen-r+") return ByStream(freopen(path, "r+", fopen("/dev/null", "r")), text);
  if (how == "spawn") return ByChild(path, text);
  if (how == "errno") return KeepsErrno(path);
  errno = EINVAL;
  return false;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 4) return 2;
  if (Write(arguments[1], arguments[2], arguments[3])) return 0;
  puts(strerror(errno));
  return 1;
}
