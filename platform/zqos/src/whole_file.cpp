#include "whole_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "file_descriptor.h"
#include "write_all.h"

namespace {

// One name each for all files of a folder: there is one writer at a time.
constexpr char kNew[] = "/.zq-settings.new";
constexpr char kOld[] = "/.zq-settings.old";

// Mode and owner of the old file. Only root can give files away; a value that is kept matters more than the
// owner.
bool TakeOver(int fd, const struct stat& old) {
  constexpr uid_t kSame = static_cast<uid_t>(-1);
  if (fchown(fd, old.st_uid, old.st_gid) != 0 && fchown(fd, kSame, old.st_gid) != 0 && errno != EPERM)
    return false;
  // After the owner, whose change clears mode bits.
  return fchmod(fd, old.st_mode & 07777) == 0;
}

}  // namespace

std::optional<WholeFile> ReadWholeFile(const std::string& path, size_t limit) {
  FileDescriptor fd(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  WholeFile file{};
  if (!fd.IsOpen() || fstat(fd.Get(), &file.status) != 0) return std::nullopt;
  if (!S_ISREG(file.status.st_mode)) {
    errno = S_ISDIR(file.status.st_mode) ? EISDIR : EINVAL;
    return std::nullopt;
  }
  if (static_cast<size_t>(file.status.st_size) > limit) {
    errno = EFBIG;
    return std::nullopt;
  }
  // The size is a hint: files of /proc have none, and one may grow meanwhile.
  size_t length = 0;
  file.bytes.resize(static_cast<size_t>(file.status.st_size) + 1);
  while (length <= limit) {
    if (length == file.bytes.size()) file.bytes.resize(std::min(length * 2 + 4096, limit + 1));
    const ssize_t count = read(fd.Get(), file.bytes.data() + length, file.bytes.size() - length);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return std::nullopt;
    length += static_cast<size_t>(count);
    if (count > 0) continue;
    file.bytes.resize(length);
    if (!fd.Close()) return std::nullopt;
    return file;
  }
  errno = EFBIG;
  return std::nullopt;
}

std::string FolderOf(const std::string& path) {
  const std::string folder = std::filesystem::path(path).parent_path().string();
  return folder.empty() ? "." : folder;
}

std::string ResolveLinks(const std::string& path) {
  constexpr int kMaxLinks = 40;  // the kernel's own limit
  std::filesystem::path resolved = path;
  for (int i = 0; i < kMaxLinks; ++i) {
    std::error_code error;
    const std::filesystem::path target = std::filesystem::read_symlink(resolved, error);
    if (error) break;
    resolved = resolved.parent_path() / target;
  }
  return resolved.string();
}

FileReplacement::FileReplacement(const FolderLock& lock, const std::string& path)
    : lock_(lock), path_(path), new_(FolderOf(path) + kNew), old_(FolderOf(path) + kOld) {
  RemoveTemporaries();
}

FileReplacement::~FileReplacement() {
  const int reason = errno;
  RemoveTemporaries();
  errno = reason;
}

void FileReplacement::RemoveTemporaries() const {
  unlink(new_.c_str());
  unlink(old_.c_str());
}

bool FileReplacement::Commit(std::string_view bytes, const struct stat* old, bool durable) const {
  if (!WriteTemporary(bytes, old, durable)) return false;
  // A second name keeps the old file at hand until the new one's name is on the disk. Where the file system
  // knows no second names, a failure of that last step leaves the new file.
  const bool kept = durable && old != nullptr && link(path_.c_str(), old_.c_str()) == 0;
  if (rename(new_.c_str(), path_.c_str()) != 0) return false;
  if (!durable || fsync(lock_.Fd()) == 0) return true;
  if (kept || old == nullptr) PutBack(kept);
  return false;
}

bool FileReplacement::WriteTemporary(std::string_view bytes, const struct stat* old, bool durable) const {
  // Of a private file no one else may read the temporary either.
  const mode_t mode = old != nullptr ? 0600 : 0644;
  FileDescriptor fd(open(new_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
  if (!fd.IsOpen() || WriteAll(fd.Get(), bytes.data(), bytes.size()) != bytes.size()) return false;
  if (old != nullptr && !TakeOver(fd.Get(), *old)) return false;
  if (durable && fsync(fd.Get()) != 0) return false;
  return fd.Close();
}

void FileReplacement::PutBack(bool hadOld) const {
  const int reason = errno;
  if (hadOld) {
    rename(old_.c_str(), path_.c_str());
  } else {
    unlink(path_.c_str());
  }
  errno = reason;
}
