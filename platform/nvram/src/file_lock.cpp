#include "file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

FileLock::FileLock(const std::string& path, int flags) : fd_(open(path.c_str(), flags | O_CLOEXEC, 0666)) {
  while (fd_ >= 0 && flock(fd_, LOCK_EX) != 0) {
    if (errno == EINTR) continue;
    const int reason = errno;
    close(fd_);
    fd_ = -1;
    errno = reason;
  }
}

// By name first: a child forked meanwhile has the open file too, until it runs a program.
FileLock::~FileLock() {
  if (fd_ < 0) return;
  flock(fd_, LOCK_UN);
  close(fd_);
}
