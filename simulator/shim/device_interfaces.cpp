#include "device_interfaces.h"

#include <net/if.h>

#include <cstring>

#include "hardware_file.h"
#include "words.h"

namespace {

constexpr DeviceInterface kInterfaces[] = {
    {"lo", 1, nullptr, nullptr},
    {"eth0", 2, "/hw/eth0.ini", "/sys/class/net/eth0/address"},
    {"ra0", 3, "/hw/ra0/link.ini", "/sys/class/net/ra0/address"},
};

constexpr size_t kMostSettings = 16384;

// Six pairs of digits.
bool ParseMac(std::string_view text, uint8_t (&mac)[6]) {
  uint8_t read[6];
  size_t length = 0;
  if (!ReadHex(text, read, sizeof(read), &length) || length != sizeof(read)) return false;
  memcpy(mac, read, sizeof(read));
  return true;
}

}  // namespace

std::span<const DeviceInterface> DeviceInterfaces() {
  return kInterfaces;
}

const DeviceInterface* FindInterface(std::string_view name) {
  for (const DeviceInterface& one : kInterfaces) {
    if (name == one.name) return &one;
  }
  return nullptr;
}

const DeviceInterface* FindInterface(int index) {
  for (const DeviceInterface& one : kInterfaces) {
    if (index == one.index) return &one;
  }
  return nullptr;
}

bool HasInterface(const DeviceInterface& interface) {
  return interface.file == nullptr || HasHardware(interface.file);
}

bool ReadInterface(const DeviceInterface& interface, InterfaceState* state) {
  if (interface.file == nullptr) {
    *state = ParseInterface(
        interface.name, "[link]\nup = yes\ncable = plugged\n[address]\nip = 127.0.0.1\nnetmask = 255.0.0.0");
    return true;
  }
  char text[kMostSettings];
  const size_t length = ReadHardware(interface.file, text, sizeof(text));
  if (length == 0 && !HasHardware(interface.file)) return false;
  *state = ParseInterface(interface.name, {text, length});
  return true;
}

void ReadMac(const DeviceInterface& interface, uint8_t (&mac)[6]) {
  memset(mac, 0, sizeof(mac));
  if (interface.macFile == nullptr) return;
  char text[64];
  ParseMac(WithoutBlanks({text, ReadHardware(interface.macFile, text, sizeof(text))}), mac);
}

short FlagsOf(const DeviceInterface& interface, const InterfaceState& state) {
  int flags = interface.file == nullptr ? IFF_LOOPBACK : IFF_BROADCAST | IFF_MULTICAST;
  if (state.up) flags |= IFF_UP;
  if (state.IsRunning()) flags |= IFF_RUNNING;
  return static_cast<short>(flags);
}
