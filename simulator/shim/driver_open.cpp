#include "driver_open.h"

#include <fcntl.h>

#include <cerrno>

namespace {

bool IsWriting(int flags) {
  return (flags & O_PATH) == 0 && (flags & O_ACCMODE) != O_RDONLY;
}

}  // namespace

Use UseOfFlags(int flags) {
  return IsWriting(flags) || (flags & (O_CREAT | O_TRUNC)) != 0 ? Use::kChange : Use::kLook;
}

bool AdaptFlags(const MappedPath& at, int& flags) {
  if (!at.IsDriver()) return true;
  if ((flags & O_TMPFILE) == O_TMPFILE) {
    errno = EOPNOTSUPP;
    return false;
  }
  if ((flags & O_CREAT) != 0 && (flags & O_EXCL) != 0) {
    errno = at.Exists() ? EEXIST : ENOENT;
    return false;
  }
  flags &= ~O_CREAT;
  if (IsWriting(flags)) flags |= O_TRUNC;
  return true;
}

int FlagsOfMode(const char* mode) {
  int flags = 0;
  switch (mode[0]) {
    case 'r':
      flags = O_RDONLY;
      break;
    case 'w':
      flags = O_WRONLY | O_CREAT | O_TRUNC;
      break;
    case 'a':
      flags = O_WRONLY | O_CREAT | O_APPEND;
      break;
    default:
      return -1;
  }
  for (const char* p = mode + 1; *p != '\0' && *p != ','; ++p) {
    if (*p == '+') flags = (flags & ~O_ACCMODE) | O_RDWR;
    if (*p == 'x') flags |= O_EXCL;
    if (*p == 'e') flags |= O_CLOEXEC;
  }
  return flags;
}
