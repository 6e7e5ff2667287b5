// Turns between the writers of one folder, in this process and in others: flock(LOCK_EX) on the folder
// itself.
#ifndef ZQ_FOLDER_LOCK_H
#define ZQ_FOLDER_LOCK_H

#include <string>

class FolderLock {
 public:
  // Waits for the turn. Not held, with errno telling why, when the folder cannot be opened or locked.
  explicit FolderLock(const std::string& folder);
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;
  ~FolderLock();

  bool Held() const { return fd_ >= 0; }
  // The folder, open for reading; the lock's own. -1 when not held.
  int Fd() const { return fd_; }

 private:
  int fd_;
};

#endif
