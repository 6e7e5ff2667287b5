// Which descriptors of this process are devices that answer more than a plain file does: noted when the path
// is opened, asked by the hooks of the calls that differ. A number that has become another file's meanwhile,
// in whatever way, is found out. A copy of a descriptor (dup, a child program's) is the plain file. Takes no
// lock.
#ifndef ZQSIM_DEVICE_TABLE_H
#define ZQSIM_DEVICE_TABLE_H

#include <atomic>
#include <cstdint>

#include "mapped_path.h"

enum class DeviceKind : uint8_t {
  kPlain,
  kI2cBus,      // transfers are requests of ioctl
  kNetlink,     // tells of changes of the network interfaces
  kDriverValue  // a driver's file opened for both: it keeps its value until a write, each of which is the
                // whole
};

// One opening of a device.
struct OpenDevice {
  std::atomic<DeviceKind> kind{DeviceKind::kPlain};
  std::atomic<uint64_t> file{0};  // which file the number was
  // kI2cBus: the chip that transfers go to, and how often it was read since its measurement was started.
  std::atomic<int> address{-1};
  std::atomic<uint32_t> reads{0};
};

// What opening `at` with these flags (of open) will give.
DeviceKind KindOf(const MappedPath& at, int flags);
// Notes an opening. Returns the descriptor, which may be a failed open's -1. Keeps errno.
int NoteOpened(int descriptor, DeviceKind kind);
// Null when the descriptor is no device of that kind. Keeps errno.
OpenDevice* FindDevice(int descriptor, DeviceKind kind);

#endif
