#include "device_table.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "world.h"

namespace {

struct Row {
  const char* path;
  DeviceKind kind;
};

constexpr Row kDevices[] = {
    {"/dev/i2c-0", DeviceKind::kI2cBus},
};

// Descriptors above are plain files: programs that open so many open no devices.
constexpr int kDescriptors = 1024;
constinit OpenDevice table[kDescriptors];

// A number for the file that the descriptor is now; 0 for none.
uint64_t FileOf(int descriptor) {
  const int before = errno;
  struct statx facts {};
  const bool known = syscall(SYS_statx, descriptor, "", AT_EMPTY_PATH, STATX_INO, &facts) == 0;
  errno = before;
  return known ? facts.stx_ino ^ (uint64_t{facts.stx_dev_minor} << 32) ^ (uint64_t{facts.stx_dev_major} << 48)
               : 0;
}

}  // namespace

DeviceKind KindOf(const MappedPath& at, int flags) {
  if (!at.OnDevice() || (flags & O_PATH) != 0) return DeviceKind::kPlain;
  if (at.IsDriver()) {
    // A shell's "<>" asks to make the file, and then writes to a copy of the descriptor.
    const bool both = (flags & (O_ACCMODE | O_TRUNC | O_CREAT)) == O_RDWR;
    return both ? DeviceKind::kDriverValue : DeviceKind::kPlain;
  }
  const char* const path = at.Text() + CurrentView()->root.size();
  for (const Row& row : kDevices) {
    if (strcmp(path, row.path) == 0) return row.kind;
  }
  return DeviceKind::kPlain;
}

int NoteOpened(int descriptor, DeviceKind kind) {
  if (descriptor < 0 || descriptor >= kDescriptors) return descriptor;
  OpenDevice& device = table[descriptor];
  if (kind == DeviceKind::kPlain) {
    if (device.kind.load(std::memory_order_relaxed) != kind) device.kind.store(kind);
    return descriptor;
  }
  device.file = FileOf(descriptor);
  device.address = -1;
  device.reads = 0;
  device.kind = kind;
  return descriptor;
}

OpenDevice* FindDevice(int descriptor, DeviceKind kind) {
  if (descriptor < 0 || descriptor >= kDescriptors) return nullptr;
  OpenDevice& device = table[descriptor];
  if (device.kind.load(std::memory_order_acquire) != kind) return nullptr;
  return device.file == FileOf(descriptor) ? &device : nullptr;
}
