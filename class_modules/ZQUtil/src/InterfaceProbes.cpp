// The addresses of the current interface, as the kernel says.
#include <string>

#include "InterfaceList.h"
#include "NetworkSocket.h"
#include "ZQNetwork.h"
#include "ZQUtil.h"
#include "ZQUtilTrace.h"
#include "zq_memory.h"
#include "zq_socket.h"
#include "zq_timer.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQNetwork";
constexpr uint32_t kUpdateCheckNearMs = 60000;
constexpr uint32_t kUpdateCheckDeferredMs = 300000;

std::optional<std::vector<ifreq>> AskForEntries(const NetworkSocket& socket) {
  return ListInterfaces([&socket](ifreq* room, size_t bytes) -> std::optional<size_t> {
    ifconf request{};
    request.ifc_len = static_cast<int>(bytes);
    request.ifc_req = room;
    if (socket.Ask(SIOCGIFCONF, &request) < 0 || request.ifc_len < 0) return std::nullopt;
    return static_cast<size_t>(request.ifc_len);
  });
}

// The kernel answers in the place of the entry's own address, so it is asked with a copy.
std::optional<short> AskForFlags(const NetworkSocket& socket, ifreq entry) {
  if (socket.Ask(SIOCGIFFLAGS, &entry) < 0) return std::nullopt;
  return entry.ifr_flags;
}

std::optional<in_addr> AskForNetmask(const NetworkSocket& socket, ifreq entry) {
  if (socket.Ask(SIOCGIFNETMASK, &entry) != 0) return std::nullopt;
  return EntryAddress(entry);
}

enum class Wanted { kAddress, kNetmask };

char* NewAddressText(const char* interface, Wanted wanted) {
  std::string text;
  const NetworkSocket socket;
  if (socket.Ok()) {
    if (const auto entries = AskForEntries(socket)) {
      text = AddressOf(interface, *entries,
                       {.flags = [&](const ifreq& entry) { return AskForFlags(socket, entry); },
                        .address =
                            [&](const ifreq& entry) {
                              return wanted == Wanted::kNetmask ? AskForNetmask(socket, entry)
                                                                : EntryAddress(entry);
                            }});
    }
  }
  return zq__newString(text.c_str(), kSourceTag, __LINE__);
}

// A script that keeps asking for the address waits for the network: no update check gets in its way.
void DeferUpdateCheck() {
  const uint32_t queue = ZQUtilMsgQHandle;
  if (zq_TimerTimeRemaining(queue, kTimerSoftwareUpdate, 0, 0) > kUpdateCheckNearMs) return;
  zq_TimerSet(queue, kUpdateCheckDeferredMs, kTimerSoftwareUpdate, 0, 0, 0, "GetIP Software Update Timer",
              false);
}

int FindInterface(const char* name) {
  const int index = zq_SocketFindInterfaceByName(name);
  ZQUTIL_TRACE("ZQUtil zq_SocketFindInterfaceByName returned %d for %s\n", index, name);
  return index;
}

}  // namespace

char* ZQNetwork::getCurrentIP() {
  DeferUpdateCheck();
  return NewAddressText(GetCurrentInterface(), Wanted::kAddress);
}

char* ZQNetwork::getCurrentNetmask() {
  return NewAddressText(GetCurrentInterface(), Wanted::kNetmask);
}

char* ZQNetwork::getMACAddr() {
  // The radio is the device's face whenever it has one, whatever the current network is.
  int index = FindInterface("ra0");
  if (index == -1) index = FindInterface("eth0");
  char address[ZQ_MAC_TEXT] = {};
  zq_GetMACofInterface(index, address);
  ZQUTIL_TRACE("ZQUtil returning MAC Address for interface %d, %s\n", index, address);
  return zq__newString(address, kSourceTag, __LINE__);
}
