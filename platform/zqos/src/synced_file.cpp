#include "synced_file.h"

namespace {

bool SameTime(const timespec& a, const timespec& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

}  // namespace

SyncedFile& SyncedFile::Last() {
  static auto* const last = new SyncedFile;
  return *last;
}

// A file that takes the other's place has another number; one that is written, or renamed, has other times.
bool SyncedFile::Is(const struct stat& status) {
  const std::lock_guard lock(mutex_);
  return status_.st_dev == status.st_dev && status_.st_ino == status.st_ino &&
         status_.st_size == status.st_size && SameTime(status_.st_mtim, status.st_mtim) &&
         SameTime(status_.st_ctim, status.st_ctim);
}

void SyncedFile::Set(const struct stat& status) {
  const std::lock_guard lock(mutex_);
  status_ = status;
}
