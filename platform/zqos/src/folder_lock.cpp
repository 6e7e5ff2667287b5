#include "folder_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

FolderLock::FolderLock(const std::string& folder)
    : fd_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  if (fd_ < 0) return;
  int result = 0;
  do {
    result = flock(fd_, LOCK_EX);
  } while (result != 0 && errno == EINTR);
  if (result == 0) return;
  const int reason = errno;
  close(fd_);
  fd_ = -1;
  errno = reason;
}

// Closing the only descriptor of the lock's open file gives the turn on, even when close reports an error. A
// child forked meanwhile holds a copy until it executes a program or ends, so the turn is given back by name
// first.
FolderLock::~FolderLock() {
  if (fd_ < 0) return;
  flock(fd_, LOCK_UN);
  close(fd_);
}
