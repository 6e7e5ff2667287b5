// The network interfaces that the device has: the loopback, and each whose file is in hw/.
#ifndef ZQSIM_DEVICE_INTERFACES_H
#define ZQSIM_DEVICE_INTERFACES_H

#include <cstdint>
#include <span>
#include <string_view>

#include "interface_state.h"

struct DeviceInterface {
  const char* name;
  int index;
  const char* file;     // in the device's folder; null for the loopback
  const char* macFile;  // where the kernel tells the hardware address; null for the loopback
};

// In the order of their indices.
std::span<const DeviceInterface> DeviceInterfaces();
// Null when no device can have one of that name or index.
const DeviceInterface* FindInterface(std::string_view name);
const DeviceInterface* FindInterface(int index);

bool HasInterface(const DeviceInterface& interface);
// False when the device lacks it.
bool ReadInterface(const DeviceInterface& interface, InterfaceState* state);
// Zeros when it has none.
void ReadMac(const DeviceInterface& interface, uint8_t (&mac)[6]);

// IFF_..., as a request for them is answered.
short FlagsOf(const DeviceInterface& interface, const InterfaceState& state);

#endif
