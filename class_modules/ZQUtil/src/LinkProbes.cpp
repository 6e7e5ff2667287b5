// The radio's link: whether it is associated, and how strong it is. What a driver says of itself differs with the
// hardware.
#include <linux/wireless.h>

#include <cerrno>
#include <cstring>

#include "LineFile.h"
#include "NetworkSocket.h"
#include "OwnedText.h"
#include "ZQNetwork.h"
#include "ZQUtilTrace.h"
#include "number_text.h"

namespace {

constexpr int32_t kHardwareVardo2 = 2;
constexpr size_t kMostOfLine = 255;
// The driver's own request that tells its state in words.
constexpr unsigned long kDriverState = SIOCIWFIRSTPRIV + 0x11;
constexpr uint16_t kStateRoom = 2047;
constexpr uint16_t kStateFlags = 4;

const char* NameOfError(int error) {
  switch (error) {
    case EBADF:
      return "EBADF";
    case EFAULT:
      return "EFAULT";
    case EINVAL:
      return "EINVAL";
    case ENOTTY:
      return "ENOTTY";
    default:
      return "other";
  }
}

bool LinkFileSaysUp() {
  ZQUTIL_TRACE("Checking connected status on a Vardo2\n");
  LineFile<kMostOfLine> file("/sys/class/net/ra0/operstate");
  if (!file.Ok()) return false;
  ZQUTIL_TRACE("Opened /sys/class/net/ra0/operstate\n");
  if (!file.Next()) return false;
  ZQUTIL_TRACE("Contents %s\n", file.Text());
  if (std::strncmp(file.Text(), "up", 2) != 0) return false;
  ZQUTIL_TRACE("Connection is up\n");
  return true;
}

bool DriverSaysConnected() {
  const NetworkSocket socket;
  if (!socket.Ok()) {
    ZQUTIL_TRACE("Could not get socket\n");
    return false;
  }
  ZQUTIL_TRACE("Creating WRQ\n");
  iwreq request{};
  ZQUTIL_TRACE("Copying interface name\n");
  std::strcpy(request.ifr_name, "ra0");
  char state[kStateRoom + 1] = {};  // a NUL stays behind what the driver fills
  request.u.data.pointer = state;
  request.u.data.length = kStateRoom;
  request.u.data.flags = kStateFlags;
  ZQUTIL_TRACE("Calling IOCTL\n");
  const int result = socket.Ask(kDriverState, &request);
  if (result < 0) {
    const int error = errno;
    ZQUTIL_TRACE("ioctl not accepted %d\n", result);
    ZQUTIL_TRACE("%s\n", NameOfError(error));
    return false;
  }
  ZQUTIL_TRACE("Results %s:\n", state);
  return std::strstr(state, "Connected") != nullptr;
}

}  // namespace

bool ZQNetwork::ConnectedStatus() {
  const bool vardo2 = hardwareType == kHardwareVardo2;
  if (!(vardo2 ? LinkFileSaysUp() : DriverSaysConnected())) return false;
  const OwnedText address(getCurrentIP());
  if (address == nullptr) return vardo2;
  return *address != '\0';
}

int32_t ZQNetwork::SignalStrength() {
  if (!isWireless()) return 0;
  const char* const path = hardwareType == kHardwareVardo2 ? "/sys/class/net/ra0/wireless/link"
                                                           : "/sys/devices/virtual/net/ra0/wireless/link";
  ZQUTIL_TRACE("Opening %s\n", path);
  LineFile<kMostOfLine> file(path);
  if (!file.Ok()) return 0;
  ZQUTIL_TRACE("File opened\n");
  int32_t strength = 0;
  while (file.Next()) strength = DecimalNumber(file.Text());
  ZQUTIL_TRACE("Signal strength is %d\n", strength);
  return strength;
}
