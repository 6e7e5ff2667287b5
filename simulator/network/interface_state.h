// What a person, or the device's system, says about one network interface in its file: hw/eth0.ini, or hw/ra0/link.ini
// for the radio. Text in, plain values out; no allocation.
#ifndef ZQSIM_INTERFACE_STATE_H
#define ZQSIM_INTERFACE_STATE_H

#include <cstddef>
#include <cstdint>
#include <string_view>

// Four bytes as they go over the wire; the first is the most significant.
struct Ipv4 {
  uint8_t bytes[4] = {};

  bool IsNone() const { return (bytes[0] | bytes[1] | bytes[2] | bytes[3]) == 0; }
  friend bool operator==(const Ipv4&, const Ipv4&) = default;
};

// Four decimal numbers up to 255 with dots between. False, and the address as it was, for anything else.
bool ReadIpv4(std::string_view text, Ipv4* address);

constexpr size_t kInterfaceLabel = 16;  // with the NUL
constexpr size_t kMostAddresses = 64;

struct InterfaceAddress {
  char label[kInterfaceLabel] = {};  // the interface's name, or a further one like "eth0:1"
  Ipv4 ip;
  Ipv4 netmask;
};

// The requests that can be made to fail.
enum class InterfaceRequest : uint8_t {
  kList,  // of all interfaces
  kFlags,
  kAddress,
  kNetmask,
  kHardware,  // the hardware address
  kIndex
};
constexpr size_t kInterfaceRequests = 6;

struct InterfaceState {
  bool up = false;    // as the system's scripts have set it
  bool link = false;  // a cable is plugged in, or the radio is associated
  InterfaceAddress addresses[kMostAddresses];
  size_t count = 0;
  Ipv4 gateway;
  int errors[kInterfaceRequests] = {};  // that the request fails with; 0 none

  int Error(InterfaceRequest request) const { return errors[static_cast<size_t>(request)]; }
  bool IsRunning() const { return up && link; }
};

// [link]
//   up          yes | no
//   cable       plugged | unplugged      (wired)
//   associated  yes | no                 (radio)
// [address]
//   ip, netmask, gateway   dotted; without ip, or with 0.0.0.0, there is none; netmask 255.255.255.0
//   alias       LABEL IP [NETMASK], one line each; at most 63
// [requests]
//   list, flags, address, netmask, hardware, index   works, or the name of an error
// A key or value that means nothing leaves the default. `name` is the interface's.
InterfaceState ParseInterface(std::string_view name, std::string_view text);

#endif
