#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>

#include "file_copy.h"
#include "folder_lock.h"
#include "platform_trace.h"
#include "whole_file.h"
#include "zq_file.h"

namespace {

// Unlinked, or not there in the first place.
bool Gone(int result) {
  return result == 0 || errno == ENOENT || errno == ENOTDIR;
}

bool RemoveInTurn(const std::string& path) {
  const FolderLock lock(FolderOf(path));
  if (!lock.Held()) return Gone(-1);
  if (!Gone(unlink(path.c_str()))) return false;
  fsync(lock.Fd());
  return true;
}

uint32_t InKb(unsigned long long blocks, unsigned long long blockBytes) {
  unsigned long long bytes = 0;
  if (__builtin_mul_overflow(blocks, blockBytes, &bytes)) return UINT32_MAX;
  return static_cast<uint32_t>(std::min<unsigned long long>(bytes / 1024, UINT32_MAX));
}

}  // namespace

bool zq_CopyFile(const char* source, const char* target, bool overwrite) try {
  if (source == nullptr || target == nullptr) return false;
  if (CopyFileWhole(source, target, overwrite)) return true;
  if (errno != EEXIST) PlatformFailure("cannot copy %s to %s: %s", source, target, strerror(errno));
  return false;
} catch (const std::exception&) {
  PlatformFailure("cannot copy %s to %s: no memory", source, target);
  return false;
}

bool zq_RemoveFile(const char* path, bool settled) try {
  if (path == nullptr) return false;
  if (settled ? RemoveInTurn(path) : Gone(unlink(path))) return true;
  PlatformFailure("cannot remove %s: %s", path, strerror(errno));
  return false;
} catch (const std::exception&) {
  PlatformFailure("cannot remove %s: no memory", path);
  return false;
}

bool zq_GetVolumeInfo(const char* path, uint32_t* freeKb, uint32_t* availableKb) {
  struct statvfs volume {};
  const bool known = path != nullptr && statvfs(path, &volume) == 0;
  if (freeKb != nullptr) *freeKb = known ? InKb(volume.f_bfree, volume.f_frsize) : 0;
  if (availableKb != nullptr) *availableKb = known ? InKb(volume.f_bavail, volume.f_frsize) : 0;
  return known;
}
