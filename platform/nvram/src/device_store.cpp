#include "device_store.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "library_context.h"
#include "uboot_library.h"

namespace {

// The kernel keeps block devices' writes back; the driver of raw flash does not.
std::string Sync(const StoreConfig& config) {
  for (const CopyPlace& place : config.copies) {
    struct stat status {};
    if (stat(place.path.c_str(), &status) != 0 || S_ISCHR(status.st_mode)) continue;
    const int fd = open(place.path.c_str(), O_RDWR | O_CLOEXEC);
    const bool synced = fd >= 0 && fsync(fd) == 0;
    const int error = errno;
    if (fd >= 0) close(fd);
    if (!synced) return "cannot write " + place.path + ": " + strerror(error);
  }
  return {};
}

}  // namespace

bool IsOnDevice(const StoreConfig& config) {
  return std::any_of(config.copies.begin(), config.copies.end(), [](const CopyPlace& place) {
    struct stat status {};
    return stat(place.path.c_str(), &status) == 0 && (S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode));
  });
}

std::string StoreThroughLibrary(uboot_ctx* context, const StoreConfig& config) {
  errno = 0;
  const int stored = libuboot_env_store(context);
  if (stored == 0) return Sync(config);
  return "cannot write " + config.copies[0].path + ": " + strerror(stored < -1 ? -stored : errno);
}

std::string EraseThroughLibrary(const std::string& configPath, const StoreConfig& config) {
  std::string why;
  // Each write goes to the older copy.
  for (size_t i = 0; i < config.copies.size() && why.empty(); ++i) {
    LibraryContext library;
    const int opened = library.Open(configPath, why);
    if (!why.empty() && opened != -ENODATA) return why;
    while (void* entry = libuboot_iterator(library.Get(), nullptr)) {
      if (libuboot_set_env(library.Get(), libuboot_getname(entry), nullptr) != 0)
        return std::string(libuboot_getname(entry)) + " is protected by .flags";
    }
    why = StoreThroughLibrary(library.Get(), config);
  }
  return why;
}

bool LibraryFindsStore(const std::string& configPath) {
  LibraryContext library;
  std::string why;
  return library.Open(configPath, why) == 0;
}
