// Turns by flock on a file, between threads as between processes.
#ifndef ZQ_NVRAM_FILE_LOCK_H
#define ZQ_NVRAM_FILE_LOCK_H

#include <string>

class FileLock {
 public:
  // Waits for the turn. `flags` are open's. Not held, errno telling why, when the file cannot be opened or
  // locked.
  FileLock(const std::string& path, int flags);
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  ~FileLock();

  bool Held() const { return fd_ >= 0; }

 private:
  int fd_;
};

#endif
