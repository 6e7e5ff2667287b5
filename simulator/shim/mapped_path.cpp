#include "mapped_path.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "kernel_files.h"
#include "lexical_path.h"
#include "path_rules.h"
#include "world.h"

MappedPath::MappedPath(const char* path, Use use) : text_(path) {
  if (path == nullptr || path[0] != '/') return;
  ok_ = Map(path, use);
}

bool MappedPath::Map(const char* path, Use use) {
  const DeviceView* view = CurrentView();
  if (view == nullptr) return true;
  std::string_view device(path);
  // The kernel has its own word on a path that is too long.
  if (device.size() >= PATH_MAX) return true;
  char plain[PATH_MAX];
  if (HasDots(device)) device = {plain, NormalizePath(device, plain, sizeof(plain))};

  const Owner owner = OwnerOf(device, *view);
  if (owner == Owner::kMachine) return true;
  if (view->root.size() + device.size() >= sizeof(buffer_)) {
    errno = ENAMETOOLONG;
    return false;
  }
  memcpy(buffer_, view->root.data(), view->root.size());
  memcpy(buffer_ + view->root.size(), device.data(), device.size());
  buffer_[view->root.size() + device.size()] = '\0';
  text_ = buffer_;
  const size_t deciding = owner == Owner::kSharedFolder ? SharedFolderOf(device).size() : device.size();
  if (owner != Owner::kDevice && use == Use::kLook && !BeginningExists(view->root.size() + deciding)) {
    text_ = path;
    return true;
  }
  driver_ = IsDriverFile(device);
  if (driver_ && use == Use::kLook) FollowInterfaces(device, text_);
  return Allowed(use);
}

bool MappedPath::Exists() const {
  const int before = errno;
  struct statx ignored;
  const bool exists = syscall(SYS_statx, AT_FDCWD, text_, AT_SYMLINK_NOFOLLOW, STATX_TYPE, &ignored) == 0;
  errno = before;
  return exists;
}

bool MappedPath::BeginningExists(size_t length) {
  const char next = std::exchange(buffer_[length], '\0');
  const bool exists = Exists();
  buffer_[length] = next;
  return exists;
}

bool MappedPath::Allowed(Use use) const {
  if (!driver_ || use == Use::kLook || use == Use::kChange) return true;
  const bool exists = Exists();
  if (use == Use::kCreate) {
    errno = exists ? EEXIST : ENOENT;
  } else {
    errno = exists ? EPERM : ENOENT;
  }
  return false;
}

size_t ShowFromDevice(char* text, size_t length) {
  const DeviceView* view = CurrentView();
  if (view == nullptr || length == 0 || text[0] != '/') return length;
  const std::string_view path(text, length);
  if (HasDots(path)) return length;
  const std::string_view seen = SeenFromDevice(path, *view);
  if (seen.size() == length) return length;
  memmove(text, seen.data(), seen.size());
  text[seen.size()] = '\0';
  return seen.size();
}

bool NamesRoot(const char* path) {
  const DeviceView* view = CurrentView();
  return view != nullptr && path != nullptr && IsAtOrBelow(path, view->root);
}
