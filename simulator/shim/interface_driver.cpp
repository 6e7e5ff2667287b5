#include "interface_driver.h"

#include <linux/sockios.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "device_interfaces.h"
#include "world.h"

namespace {

constexpr int kMtu = 1500;

int Refuse(int reason) {
  errno = reason;
  return -1;
}

void PutAddress(const Ipv4& ip, sockaddr* out) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  memcpy(&address.sin_addr, ip.bytes, sizeof(ip.bytes));
  memcpy(out, &address, sizeof(address));
}

// The label of a further address names the same interface.
std::string_view BaseName(const ifreq& request) {
  const std::string_view label(request.ifr_name, strnlen(request.ifr_name, IFNAMSIZ));
  return {label.data(), std::min(label.find(':'), label.size())};
}

// As the kernel chooses: the address of that label which the request holds besides, else the label's first.
const InterfaceAddress* FindAddress(const InterfaceState& state, const ifreq& request) {
  sockaddr_in wanted;
  memcpy(&wanted, &request.ifr_addr, sizeof(wanted));
  const InterfaceAddress* first = nullptr;
  for (size_t i = 0; i < state.count; ++i) {
    const InterfaceAddress& one = state.addresses[i];
    if (strncmp(one.label, request.ifr_name, IFNAMSIZ) != 0) continue;
    if (wanted.sin_family == AF_INET && memcmp(&wanted.sin_addr, one.ip.bytes, 4) == 0) return &one;
    if (first == nullptr) first = &one;
  }
  return first;
}

Ipv4 Broadcast(const InterfaceAddress& address) {
  Ipv4 all = address.ip;
  for (int i = 0; i < 4; ++i) all.bytes[i] = static_cast<uint8_t>(all.bytes[i] | ~address.netmask.bytes[i]);
  return all;
}

// Whole entries, as many as there is room for; without a buffer the room that all of them take.
int AnswerList(ifconf* list) {
  size_t used = 0;
  for (const DeviceInterface& interface : DeviceInterfaces()) {
    InterfaceState state;
    if (!ReadInterface(interface, &state)) continue;
    const int error = state.Error(InterfaceRequest::kList);
    if (error != 0) return Refuse(error);
    for (size_t i = 0; i < state.count; ++i) {
      if (list->ifc_buf != nullptr) {
        if (list->ifc_len < 0 || used + sizeof(ifreq) > static_cast<size_t>(list->ifc_len)) break;
        ifreq entry{};
        memcpy(entry.ifr_name, state.addresses[i].label, kInterfaceLabel);
        PutAddress(state.addresses[i].ip, &entry.ifr_addr);
        memcpy(list->ifc_buf + used, &entry, sizeof(entry));
      }
      used += sizeof(ifreq);
    }
  }
  list->ifc_len = static_cast<int>(used);
  return 0;
}

int AnswerName(ifreq* request) {
  const DeviceInterface* const interface = FindInterface(request->ifr_ifindex);
  if (interface == nullptr || !HasInterface(*interface)) return Refuse(ENODEV);
  memset(request->ifr_name, 0, IFNAMSIZ);
  memcpy(request->ifr_name, interface->name, strlen(interface->name));
  return 0;
}

int AnswerAddress(unsigned long question, const InterfaceState& state, ifreq* request) {
  const InterfaceAddress* const address = FindAddress(state, *request);
  if (address == nullptr) return Refuse(EADDRNOTAVAIL);
  const Ipv4 answer = question == SIOCGIFNETMASK   ? address->netmask
                      : question == SIOCGIFBRDADDR ? Broadcast(*address)
                                                   : address->ip;
  PutAddress(answer, &request->ifr_addr);
  return 0;
}

// The error that a person wants the question to fail with; 0 for none.
int WantedError(unsigned long question, const InterfaceState& state) {
  switch (question) {
    case SIOCGIFFLAGS:
      return state.Error(InterfaceRequest::kFlags);
    case SIOCGIFADDR:
    case SIOCGIFBRDADDR:
    case SIOCGIFDSTADDR:
      return state.Error(InterfaceRequest::kAddress);
    case SIOCGIFNETMASK:
      return state.Error(InterfaceRequest::kNetmask);
    case SIOCGIFHWADDR:
      return state.Error(InterfaceRequest::kHardware);
    case SIOCGIFINDEX:
      return state.Error(InterfaceRequest::kIndex);
    default:
      return 0;
  }
}

int AnswerHardware(const DeviceInterface& interface, ifreq* request) {
  uint8_t mac[6];
  ReadMac(interface, mac);
  request->ifr_hwaddr = {};
  request->ifr_hwaddr.sa_family = interface.file == nullptr ? ARPHRD_LOOPBACK : ARPHRD_ETHER;
  memcpy(request->ifr_hwaddr.sa_data, mac, sizeof(mac));
  return 0;
}

int AnswerNamed(unsigned long question, ifreq* request) {
  const DeviceInterface* const interface = FindInterface(BaseName(*request));
  InterfaceState state;
  if (interface == nullptr || !ReadInterface(*interface, &state)) return Refuse(ENODEV);
  const int error = WantedError(question, state);
  if (error != 0) return Refuse(error);
  switch (question) {
    case SIOCGIFFLAGS:
      request->ifr_flags = FlagsOf(*interface, state);
      return 0;
    case SIOCGIFADDR:
    case SIOCGIFDSTADDR:
    case SIOCGIFBRDADDR:
    case SIOCGIFNETMASK:
      return AnswerAddress(question, state, request);
    case SIOCGIFHWADDR:
      return AnswerHardware(*interface, request);
    case SIOCGIFINDEX:
      request->ifr_ifindex = interface->index;
      return 0;
    case SIOCGIFMTU:
      request->ifr_mtu = kMtu;
      return 0;
    case SIOCGIFMETRIC:
      request->ifr_metric = 0;
      return 0;
    default:
      return Refuse(EOPNOTSUPP);
  }
}

}  // namespace

bool IsInterfaceRequest(unsigned long request) {
  return (request >= SIOCADDRT && request <= SIOCRTMSG) ||
         (request >= SIOCGIFNAME && request <= SIOCBRDELIF) ||
         (request >= SIOCDEVPRIVATE && request <= SIOCDEVPRIVATE + 15);
}

bool IsDeviceSocket(int descriptor) {
  if (CurrentView() == nullptr) return false;
  const int before = errno;
  int type = 0;
  socklen_t size = sizeof(type);
  const bool is = syscall(SYS_getsockopt, descriptor, SOL_SOCKET, SO_TYPE, &type, &size) == 0;
  errno = before;
  return is;
}

int AnswerInterface(unsigned long request, void* argument) {
  const int before = errno;
  int result = -1;
  if (argument == nullptr) {
    errno = EFAULT;
  } else if (request == SIOCGIFCONF) {
    result = AnswerList(static_cast<ifconf*>(argument));
  } else if (request == SIOCGIFNAME) {
    result = AnswerName(static_cast<ifreq*>(argument));
  } else {
    result = AnswerNamed(request, static_cast<ifreq*>(argument));
  }
  if (result == 0) errno = before;
  return result;
}
