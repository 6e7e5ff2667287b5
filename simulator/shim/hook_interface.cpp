// The C library's own questions about network interfaces, which it asks the kernel by ways that no hook sees.
#include <ifaddrs.h>
#include <linux/if_packet.h>
#include <net/ethernet.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <netinet/in.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "device_interfaces.h"
#include "next.h"
#include "world.h"

ZQSIM_NEXT(getifaddrs)
ZQSIM_NEXT(freeifaddrs)
ZQSIM_NEXT(if_nametoindex)
ZQSIM_NEXT(if_indextoname)
ZQSIM_NEXT(if_nameindex)
ZQSIM_NEXT(if_freenameindex)

namespace {

// One answer of getifaddrs, its strings and addresses with it, so that one call frees it.
struct Line {
  ifaddrs list;
  char name[IFNAMSIZ];
  sockaddr_storage address;
  sockaddr_storage netmask;
  sockaddr_storage broadcast;
};

// The most that a device has: a line for each interface and one for each of its addresses.
constexpr size_t kMostInterfaces = 3;
constexpr size_t kMostLines = kMostInterfaces * (1 + kMostAddresses);

void PutIpv4(const Ipv4& ip, sockaddr_storage* out) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  memcpy(&address.sin_addr, ip.bytes, sizeof(ip.bytes));
  memcpy(out, &address, sizeof(address));
}

void StartLine(const DeviceInterface& interface, const InterfaceState& state, const char* name, Line* line) {
  *line = {};
  memcpy(line->name, name, strnlen(name, IFNAMSIZ - 1));
  line->list.ifa_name = line->name;
  line->list.ifa_flags = static_cast<unsigned short>(FlagsOf(interface, state));
  line->list.ifa_addr = reinterpret_cast<sockaddr*>(&line->address);
}

void PutHardware(const DeviceInterface& interface, const InterfaceState& state, Line* line) {
  StartLine(interface, state, interface.name, line);
  uint8_t mac[6];
  ReadMac(interface, mac);
  sockaddr_ll address{};
  address.sll_family = AF_PACKET;
  address.sll_ifindex = interface.index;
  address.sll_hatype = interface.file == nullptr ? ARPHRD_LOOPBACK : ARPHRD_ETHER;
  address.sll_halen = sizeof(mac);
  memcpy(address.sll_addr, mac, sizeof(mac));
  memcpy(&line->address, &address, sizeof(address));
}

void PutInternet(const DeviceInterface& interface, const InterfaceState& state,
                 const InterfaceAddress& address, Line* line) {
  StartLine(interface, state, address.label, line);
  PutIpv4(address.ip, &line->address);
  PutIpv4(address.netmask, &line->netmask);
  line->list.ifa_netmask = reinterpret_cast<sockaddr*>(&line->netmask);
  if (interface.file == nullptr) return;
  Ipv4 all = address.ip;
  for (int i = 0; i < 4; ++i) all.bytes[i] = static_cast<uint8_t>(all.bytes[i] | ~address.netmask.bytes[i]);
  PutIpv4(all, &line->broadcast);
  line->list.ifa_broadaddr = reinterpret_cast<sockaddr*>(&line->broadcast);
}

// 0, or the error that a person wants the question to fail with.
int FillLines(Line* lines) {
  int count = 0;
  for (const DeviceInterface& interface : DeviceInterfaces()) {
    InterfaceState state;
    if (!ReadInterface(interface, &state)) continue;
    const int error = state.Error(InterfaceRequest::kList);
    if (error != 0) return error;
    PutHardware(interface, state, &lines[count++]);
    for (size_t i = 0; i < state.count; ++i)
      PutInternet(interface, state, state.addresses[i], &lines[count++]);
  }
  for (int i = 0; i + 1 < count; ++i) lines[i].list.ifa_next = &lines[i + 1].list;
  return 0;
}

// 0 when the device has none of that name, or a person wants the question to fail.
unsigned IndexOf(const char* name) {
  const DeviceInterface* const interface = FindInterface(std::string_view(name));
  InterfaceState state;
  if (interface == nullptr || !ReadInterface(*interface, &state) ||
      state.Error(InterfaceRequest::kIndex) != 0) {
    errno = ENODEV;
    return 0;
  }
  return static_cast<unsigned>(interface->index);
}

}  // namespace

ZQSIM_HOOK int getifaddrs(ifaddrs** list) noexcept {
  if (CurrentView() == nullptr) return NEXT(getifaddrs)(list);
  // The caller's until it gives it back, so it cannot be on the stack; most of it is never touched.
  auto* const lines = static_cast<Line*>(calloc(kMostLines, sizeof(Line)));
  const int error = lines != nullptr ? FillLines(lines) : ENOMEM;
  if (error != 0) {
    free(lines);
    errno = error;
    return -1;
  }
  *list = &lines->list;
  return 0;
}

ZQSIM_HOOK void freeifaddrs(ifaddrs* list) noexcept {
  if (CurrentView() == nullptr) return NEXT(freeifaddrs)(list);
  free(list);
}

ZQSIM_HOOK unsigned if_nametoindex(const char* name) noexcept {
  return CurrentView() == nullptr ? NEXT(if_nametoindex)(name) : IndexOf(name);
}

ZQSIM_HOOK char* if_indextoname(unsigned index, char* name) noexcept {
  if (CurrentView() == nullptr) return NEXT(if_indextoname)(index, name);
  const DeviceInterface* const interface = FindInterface(static_cast<int>(index));
  if (interface == nullptr || !HasInterface(*interface)) {
    errno = ENXIO;
    return nullptr;
  }
  memcpy(name, interface->name, strlen(interface->name) + 1);
  return name;
}

ZQSIM_HOOK struct if_nameindex* if_nameindex() noexcept {
  if (CurrentView() == nullptr) return NEXT(if_nameindex)();
  using Entry = struct if_nameindex;
  auto* const entries = static_cast<Entry*>(calloc(kMostInterfaces + 1, sizeof(Entry)));
  if (entries == nullptr) {
    errno = ENOBUFS;
    return nullptr;
  }
  size_t count = 0;
  for (const DeviceInterface& interface : DeviceInterfaces()) {
    if (!HasInterface(interface)) continue;
    entries[count].if_index = static_cast<unsigned>(interface.index);
    entries[count++].if_name = const_cast<char*>(interface.name);
  }
  return entries;
}

ZQSIM_HOOK void if_freenameindex(struct if_nameindex* entries) noexcept {
  if (CurrentView() == nullptr) return NEXT(if_freenameindex)(entries);
  free(entries);
}
