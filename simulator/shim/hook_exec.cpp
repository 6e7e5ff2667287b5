// Programs: one below the device's root runs, also when $PATH leads to it. Children inherit the device
// through their environment. All of this may run in a child of vfork: it only uses its stack.
#include <alloca.h>
#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>

#include "call.h"
#include "driver_open.h"

ZQSIM_NEXT(faccessat)
ZQSIM_NEXT(execve)
ZQSIM_NEXT(execvpe)
ZQSIM_NEXT(posix_spawn)
ZQSIM_NEXT(posix_spawnp)
ZQSIM_NEXT(posix_spawn_file_actions_addopen)
ZQSIM_NEXT(posix_spawn_file_actions_addchdir_np)

namespace {

// Finds the first program of that name in $PATH. True, and its path in `found`, when that one is the
// device's.
bool FindOnDevice(const char* name, char (&found)[PATH_MAX]) {
  const char* folders = getenv("PATH");
  const size_t nameLength = strlen(name);
  if (folders == nullptr || nameLength == 0) return false;
  while (true) {
    const size_t length = strcspn(folders, ":");
    if (length > 0 && length + 1 + nameLength < sizeof(found)) {
      char candidate[PATH_MAX];
      memcpy(candidate, folders, length);
      candidate[length] = '/';
      memcpy(candidate + length + 1, name, nameLength + 1);
      const MappedPath at(candidate, Use::kLook);
      if (at.Ok() && NEXT(faccessat)(AT_FDCWD, at.Text(), X_OK, AT_EACCESS) == 0) {
        memcpy(found, at.Text(), strlen(at.Text()) + 1);
        return at.OnDevice();
      }
    }
    if (folders[length] == '\0') return false;
    folders += length + 1;
  }
}

int Execute(const char* path, char* const arguments[], char* const environment[]) {
  return Call<Use::kLook>(NEXT(execve), path, arguments, environment);
}

// As execvp: with a "/" in it the name is a path, else $PATH is searched.
int ExecuteByName(const char* name, char* const arguments[], char* const environment[]) {
  if (strchr(name, '/') != nullptr) return Call<Use::kLook>(NEXT(execvpe), name, arguments, environment);
  char found[PATH_MAX];
  return NEXT(execvpe)(FindOnDevice(name, found) ? found : name, arguments, environment);
}

// The number of pointers in the array that the execl family's arguments make, with its null.
size_t CountArguments(const char* first, va_list rest) {
  size_t count = 1;
  for (const char* next = first; next != nullptr; next = va_arg(rest, const char*)) ++count;
  return count;
}

void CopyArguments(char** words, size_t count, const char* first, va_list rest) {
  words[0] = const_cast<char*>(first);
  for (size_t i = 1; i < count; ++i) words[i] = va_arg(rest, char*);
}

}  // namespace

// Declares `arguments`, on the stack of the call: the `count` words up to their null, then as many as are
// `behind` it.
#define ZQSIM_GATHER(first, behind)                                                         \
  va_list rest;                                                                             \
  va_start(rest, first);                                                                    \
  const size_t count = CountArguments((first), rest);                                       \
  va_end(rest);                                                                             \
  char** const arguments = static_cast<char**>(alloca((count + (behind)) * sizeof(char*))); \
  va_start(rest, first);                                                                    \
  CopyArguments(arguments, count + (behind), (first), rest);                                \
  va_end(rest);

ZQSIM_HOOK int execve(const char* path, char* const arguments[], char* const environment[]) noexcept {
  return Execute(path, arguments, environment);
}
ZQSIM_HOOK int execv(const char* path, char* const arguments[]) noexcept {
  return Execute(path, arguments, environ);
}
ZQSIM_HOOK int execvp(const char* name, char* const arguments[]) noexcept {
  return ExecuteByName(name, arguments, environ);
}
ZQSIM_HOOK int execvpe(const char* name, char* const arguments[], char* const environment[]) noexcept {
  return ExecuteByName(name, arguments, environment);
}

ZQSIM_HOOK int execl(const char* path, const char* first, ...) noexcept {
  ZQSIM_GATHER(first, 0)
  return Execute(path, arguments, environ);
}
ZQSIM_HOOK int execlp(const char* name, const char* first, ...) noexcept {
  ZQSIM_GATHER(first, 0)
  return ExecuteByName(name, arguments, environ);
}
ZQSIM_HOOK int execle(const char* path, const char* first, ...) noexcept {
  ZQSIM_GATHER(first, 1)
  return Execute(path, arguments, reinterpret_cast<char**>(arguments[count]));
}

ZQSIM_HOOK int posix_spawn(pid_t* child, const char* path, const posix_spawn_file_actions_t* actions,
                           const posix_spawnattr_t* attributes, char* const arguments[],
                           char* const environment[]) {
  const MappedPath at(path, Use::kLook);
  if (!at.Ok()) return errno;
  return NEXT(posix_spawn)(child, at.Text(), actions, attributes, arguments, environment);
}

ZQSIM_HOOK int posix_spawnp(pid_t* child, const char* name, const posix_spawn_file_actions_t* actions,
                            const posix_spawnattr_t* attributes, char* const arguments[],
                            char* const environment[]) {
  char found[PATH_MAX];
  if (strchr(name, '/') == nullptr && FindOnDevice(name, found)) name = found;
  const MappedPath at(name, Use::kLook);
  if (!at.Ok()) return errno;
  return NEXT(posix_spawnp)(child, at.Text(), actions, attributes, arguments, environment);
}

// What the child opens before it runs. The flags follow the same rules as open's.
ZQSIM_HOOK int posix_spawn_file_actions_addopen(posix_spawn_file_actions_t* actions, int descriptor,
                                                const char* path, int flags, mode_t mode) noexcept {
  const MappedPath at(path, UseOfFlags(flags));
  if (!at.Ok() || !AdaptFlags(at, flags)) return errno;
  return NEXT(posix_spawn_file_actions_addopen)(actions, descriptor, at.Text(), flags, mode);
}
ZQSIM_HOOK int posix_spawn_file_actions_addchdir_np(posix_spawn_file_actions_t* actions,
                                                    const char* path) noexcept {
  const MappedPath at(path, Use::kLook);
  if (!at.Ok()) return errno;
  return NEXT(posix_spawn_file_actions_addchdir_np)(actions, at.Text());
}
