// Paths that the kernel gives back: a process on the device sees the device's, without the root.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "mapped_path.h"
#include "next.h"

ZQSIM_NEXT(realpath)
ZQSIM_NEXT(readlinkat)
ZQSIM_NEXT(getcwd)

namespace {

char* RealPath(const char* path, char* resolved) {
  const MappedPath at(path, Use::kLook);
  if (!at.Ok()) return nullptr;
  char* found = NEXT(realpath)(at.Text(), resolved);
  if (found != nullptr && !NamesRoot(path)) ShowFromDevice(found, strlen(found));
  return found;
}

ssize_t ReadLink(int folder, const char* path, char* buffer, size_t size) {
  const MappedPath at(path, Use::kLook);
  if (!at.Ok()) return -1;
  char target[PATH_MAX];
  const ssize_t read = NEXT(readlinkat)(folder, at.Text(), target, size == 0 ? 0 : sizeof(target));
  if (read < 0) return read;
  size_t length = static_cast<size_t>(read);
  if (!NamesRoot(path)) length = ShowFromDevice(target, length);
  if (length > size) length = size;
  memcpy(buffer, target, length);
  return static_cast<ssize_t>(length);
}

// As getcwd of the C library: `buffer` null allocates `size` bytes, or as many as needed when that is 0.
char* WorkingFolder(char* buffer, size_t size) {
  char folder[PATH_MAX];
  if (NEXT(getcwd)(folder, sizeof(folder)) == nullptr) return NEXT(getcwd)(buffer, size);
  const size_t needed = ShowFromDevice(folder, strlen(folder)) + 1;
  if (size == 0) {
    if (buffer != nullptr) {
      errno = EINVAL;
      return nullptr;
    }
    size = needed;
  }
  if (needed > size) {
    errno = ERANGE;
    return nullptr;
  }
  if (buffer == nullptr) buffer = static_cast<char*>(malloc(size));
  if (buffer != nullptr) memcpy(buffer, folder, needed);
  return buffer;
}

// What the headers' checks found out about the caller's buffer.
void EndIfShort(size_t asked, size_t has) {
  if (asked > has) abort();
}

}  // namespace

ZQSIM_HOOK char* realpath(const char* path, char* resolved) noexcept {
  return RealPath(path, resolved);
}
ZQSIM_HOOK char* canonicalize_file_name(const char* path) noexcept {
  return RealPath(path, nullptr);
}
ZQSIM_HOOK char* __realpath_chk(const char* path, char* resolved, size_t has) noexcept {
  EndIfShort(PATH_MAX, has);
  return RealPath(path, resolved);
}

ZQSIM_HOOK ssize_t readlink(const char* path, char* buffer, size_t size) noexcept {
  return ReadLink(AT_FDCWD, path, buffer, size);
}
ZQSIM_HOOK ssize_t readlinkat(int folder, const char* path, char* buffer, size_t size) noexcept {
  return ReadLink(folder, path, buffer, size);
}
ZQSIM_HOOK ssize_t __readlink_chk(const char* path, char* buffer, size_t size, size_t has) noexcept {
  EndIfShort(size, has);
  return ReadLink(AT_FDCWD, path, buffer, size);
}
ZQSIM_HOOK ssize_t __readlinkat_chk(int folder, const char* path, char* buffer, size_t size,
                                    size_t has) noexcept {
  EndIfShort(size, has);
  return ReadLink(folder, path, buffer, size);
}

ZQSIM_HOOK char* getcwd(char* buffer, size_t size) noexcept {
  return WorkingFolder(buffer, size);
}
ZQSIM_HOOK char* get_current_dir_name() noexcept {
  return WorkingFolder(nullptr, 0);
}
ZQSIM_HOOK char* __getcwd_chk(char* buffer, size_t size, size_t has) noexcept {
  EndIfShort(size, has);
  return WorkingFolder(buffer, size);
}
