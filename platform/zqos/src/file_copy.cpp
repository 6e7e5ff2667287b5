#include "file_copy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <vector>

#include "file_descriptor.h"
#include "whole_file.h"
#include "write_all.h"

namespace {

// A new file of a name of its own beside the target, which goes unless it takes the target's place.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& target) : target_(target), file_(Make()) {}
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    const int reason = errno;
    if (!placed_) unlink(path_.c_str());
    errno = reason;
  }

  const FileDescriptor& File() const { return file_; }

  bool TakePlace(bool overwrite) {
    if (fsync(file_.Get()) != 0 || !file_.Close()) return false;
    placed_ = overwrite ? rename(path_.c_str(), target_.c_str()) == 0 : RenameToNew();
    return placed_;
  }

 private:
  int Make() {
    static std::atomic<unsigned> number{0};
    constexpr int kAttempts = 1000;  // names that copies which were killed left behind
    const std::string stem = FolderOf(target_) + "/.zq-copy." + std::to_string(getpid()) + ".";
    for (int i = 0; i < kAttempts; ++i) {
      path_ = stem + std::to_string(++number);
      // 0600: as long as it is not whole, nobody else reads it.
      const int fd = open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
      if (fd >= 0 || errno != EEXIST) return fd;
    }
    return -1;
  }

  bool RenameToNew() const {
    if (renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, target_.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (errno == EEXIST) return false;
    // File systems and kernels without it: the target can only come to be between these two calls.
    struct stat status {};
    if (lstat(target_.c_str(), &status) == 0) {
      errno = EEXIST;
      return false;
    }
    return rename(path_.c_str(), target_.c_str()) == 0;
  }

  const std::string target_;
  std::string path_;
  FileDescriptor file_;
  bool placed_ = false;
};

// After this the new name survives a power cut; where the folder cannot be opened, it is as good as it gets.
void SyncFolder(const std::string& folder) {
  const FileDescriptor fd(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (fd.IsOpen()) fsync(fd.Get());
}

bool CopyBytes(int from, int to) {
  std::vector<char> buffer(size_t{64} << 10);
  for (;;) {
    const ssize_t count = read(from, buffer.data(), buffer.size());
    if (count == 0) return true;
    if (count < 0 && errno == EINTR) continue;
    if (count < 0 || WriteAll(to, buffer.data(), static_cast<size_t>(count)) != static_cast<size_t>(count))
      return false;
  }
}

// Whether the target may be written; errno when not.
bool MayTake(const std::string& target, bool overwrite) {
  struct stat status {};
  if (lstat(target.c_str(), &status) != 0) return errno == ENOENT;
  if (!overwrite) {
    errno = EEXIST;
  } else if (S_ISREG(status.st_mode) || S_ISLNK(status.st_mode)) {
    return true;
  } else {
    errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;  // also: no file takes the place of a device
  }
  return false;
}

}  // namespace

bool CopyFileWhole(const std::string& source, const std::string& target, bool overwrite) {
  if (!MayTake(target, overwrite)) return false;
  // A link stays one: what it names is replaced.
  const std::string place = ResolveLinks(target);
  if (!MayTake(place, overwrite)) return false;

  // Not blocking: the open of a pipe would wait for a writer.
  const FileDescriptor from(open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  struct stat status {};
  if (!from.IsOpen() || fstat(from.Get(), &status) != 0) return false;
  if (!S_ISREG(status.st_mode)) {
    errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    return false;
  }

  TemporaryFile copy(place);
  if (!copy.File().IsOpen() || !CopyBytes(from.Get(), copy.File().Get()) ||
      fchmod(copy.File().Get(), status.st_mode & 07777) != 0 || !copy.TakePlace(overwrite))
    return false;
  SyncFolder(FolderOf(place));
  return true;
}
