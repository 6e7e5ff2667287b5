#include "ini_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "file_descriptor.h"
#include "folder_lock.h"
#include "platform_trace.h"
#include "synced_file.h"
#include "whole_file.h"

namespace {

constexpr size_t kLimit = size_t{64} << 20;

bool Refuse(const char* what, const std::string& path) {
  PlatformFailure("INI: cannot %s %s: %s", what, path.c_str(), strerror(errno));
  return false;
}

// An earlier write of the same value may not have been durable.
bool Sync(const FolderLock& lock, const std::string& path, const struct stat& status) {
  if (SyncedFile::Last().Is(status)) return true;
  const FileDescriptor fd(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!fd.IsOpen() || fsync(fd.Get()) != 0 || fsync(lock.Fd()) != 0) return false;
  SyncedFile::Last().Set(status);
  return true;
}

}  // namespace

std::string IniFilePath(const std::string& file) {
  if (file.find('/') != std::string::npos) return file;
  const char* folder = getenv("ZQ_CONFIG_DIR");
  return folder != nullptr && *folder != '\0' ? std::string(folder) + '/' + file : file;
}

std::optional<std::string> ReadIniFile(const std::string& path) {
  std::optional<WholeFile> file = ReadWholeFile(path, kLimit);
  if (file) return std::move(file->bytes);
  if (errno == ENOENT) return "";
  Refuse("read", path);
  return std::nullopt;
}

bool ChangeIniFile(const std::string& path, const std::function<IniChange(IniDocument&)>& change,
                   bool durable) {
  const std::string target = ResolveLinks(path);
  const FolderLock lock(FolderOf(target));
  if (!lock.Held()) return Refuse("lock the folder of", path);
  const FileReplacement replacement(lock, target);

  std::optional<WholeFile> old = ReadWholeFile(target, kLimit);
  if (!old && errno != ENOENT) return Refuse("read", path);
  IniDocument document(old ? std::move(old->bytes) : "");
  switch (change(document)) {
    case IniChange::kNone:
      return !durable || Sync(lock, target, old->status) || Refuse("sync", path);
    case IniChange::kRefused:
      PlatformFailure("INI: %s cannot hold such a section or key", path.c_str());
      return false;
    case IniChange::kChanged:
      break;
  }
  if (document.Bytes().size() > kLimit) {
    errno = EFBIG;
    return Refuse("write", path);
  }
  // The rename below would get around the old file's write protection.
  if (old && access(target.c_str(), W_OK) != 0) return Refuse("write", path);
  return replacement.Commit(document.Bytes(), old ? &old->status : nullptr, durable) || Refuse("write", path);
}
