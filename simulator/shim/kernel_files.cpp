#include "kernel_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstring>
#include <ctime>

#include "device_interfaces.h"
#include "hardware_file.h"
#include "hardware_text.h"
#include "kernel_text.h"
#include "radio_answers.h"

namespace {

constexpr char kRadioFile[] = "/hw/ra0/link.ini";
constexpr char kCellsFile[] = "/hw/ra0/cells.ini";

enum class Kind : uint8_t { kRoutes, kOperstate, kCarrier, kWirelessLink };

struct KernelFile {
  std::string_view path;
  Kind kind;
  const char* interface;  // null: all of them
};

constexpr KernelFile kFiles[] = {
    {"/proc/net/route", Kind::kRoutes, nullptr},
    {"/sys/class/net/eth0/carrier", Kind::kCarrier, "eth0"},
    {"/sys/class/net/eth0/operstate", Kind::kOperstate, "eth0"},
    {"/sys/class/net/ra0/carrier", Kind::kCarrier, "ra0"},
    {"/sys/class/net/ra0/operstate", Kind::kOperstate, "ra0"},
    {"/sys/class/net/ra0/wireless/link", Kind::kWirelessLink, "ra0"},
    {"/sys/devices/virtual/net/ra0/wireless/link", Kind::kWirelessLink, "ra0"},
};

// All routes that a device can have.
constexpr size_t kMostText = 12288;

bool Tells(const KernelFile& file, const DeviceInterface& interface) {
  return interface.file != nullptr &&
         (file.interface == nullptr || strcmp(file.interface, interface.name) == 0);
}

int64_t SourceChangedAt(const KernelFile& file) {
  // How well the link is may stand with its cell.
  int64_t latest = file.kind == Kind::kWirelessLink ? HardwareChangedAt(kCellsFile) : kNoFile;
  for (const DeviceInterface& interface : DeviceInterfaces()) {
    if (!Tells(file, interface)) continue;
    const int64_t at = HardwareChangedAt(interface.file);
    if (at > latest) latest = at;
  }
  return latest;
}

void TellOf(Kind kind, const char* name, const InterfaceState& state, KernelText* text) {
  switch (kind) {
    case Kind::kRoutes:
      return AddRoutes(name, state, text);
    case Kind::kOperstate:
      return AddOperstate(state, text);
    case Kind::kCarrier:
      return AddCarrier(state, text);
    case Kind::kWirelessLink:
      return AddWirelessLink(state, LinkQuality(ParseRadioSettings(HardwareText(kRadioFile).Text())).qual,
                             text);
  }
}

void Tell(const KernelFile& file, KernelText* text) {
  if (file.kind == Kind::kRoutes) AddRouteTitle(text);
  for (const DeviceInterface& interface : DeviceInterfaces()) {
    InterfaceState state;
    if (Tells(file, interface) && ReadInterface(interface, &state))
      TellOf(file.kind, interface.name, state, text);
  }
}

bool Holds(const char* place, std::string_view text) {
  const long file = syscall(SYS_openat, AT_FDCWD, place, O_RDONLY | O_CLOEXEC);
  if (file < 0) return true;
  char piece[1024];
  long length = 0;
  while ((length = syscall(SYS_read, file, piece, sizeof(piece))) > 0) {
    if (!text.starts_with(std::string_view(piece, static_cast<size_t>(length)))) break;
    text.remove_prefix(static_cast<size_t>(length));
  }
  syscall(SYS_close, file);
  return length == 0 && text.empty();
}

// Puts the text in the file's place, dated a moment before its source: a hand that writes either in the same tick of
// the clock is later than this.
void Put(const char* place, std::string_view text, int64_t sourceAt) {
  char draft[PATH_MAX + 16];
  KernelText name(draft, sizeof(draft) - 1);
  name.Add(place);
  name.Add(".new-");
  name.AddNumber(static_cast<uint32_t>(syscall(SYS_gettid)));
  draft[name.View().size()] = '\0';
  const long file = syscall(SYS_openat, AT_FDCWD, draft, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (file < 0) return;
  const bool whole = syscall(SYS_write, file, text.data(), text.size()) == static_cast<long>(text.size());
  const int64_t at = sourceAt - 1;
  const timespec time = {static_cast<time_t>(at / 1'000'000'000), static_cast<long>(at % 1'000'000'000)};
  const timespec times[2] = {time, time};
  syscall(SYS_utimensat, file, nullptr, times, 0);
  syscall(SYS_close, file);
  if (!whole || syscall(SYS_renameat2, AT_FDCWD, draft, AT_FDCWD, place, 0) != 0) {
    syscall(SYS_unlinkat, AT_FDCWD, draft, 0);
  }
}

void Follow(const KernelFile& file, const char* place) {
  const int64_t fileAt = FileChangedAt(place);
  const int64_t sourceAt = SourceChangedAt(file);
  if (fileAt == kNoFile || sourceAt == kNoFile || fileAt >= sourceAt) return;
  char buffer[kMostText];
  KernelText text(buffer, sizeof(buffer));
  Tell(file, &text);
  if (!Holds(place, text.View())) Put(place, text.View(), sourceAt);
}

}  // namespace

void FollowInterfaces(std::string_view device, const char* place) {
  if (!device.starts_with("/proc/net/") && !device.starts_with("/sys/")) return;
  const int before = errno;
  for (const KernelFile& file : kFiles) {
    if (file.path == device) Follow(file, place);
  }
  errno = before;
}
