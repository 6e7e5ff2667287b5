// A file that need not be put on the disk again. Any thread.
#ifndef ZQ_SYNCED_FILE_H
#define ZQ_SYNCED_FILE_H

#include <sys/stat.h>

#include <mutex>

// Remembers in which state a file was when it was last known to be on the disk: one file, as writes come in bursts.
class SyncedFile {
 public:
  // Never destroyed: threads write settings until the process is gone.
  static SyncedFile& Last();

  // Whether the file in that state, looked at just now, is the one that is on the disk.
  bool Is(const struct stat& status);
  // The file is on the disk, with its name, as it was when it was looked at or later.
  void Set(const struct stat& status);

 private:
  std::mutex mutex_;
  struct stat status_ {};
};

#endif
