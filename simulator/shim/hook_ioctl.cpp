// Requests to devices. Those that no simulated device answers are the machine's.
#include <sys/ioctl.h>

#include <cstdarg>

#include "device_table.h"
#include "i2c_bus.h"
#include "interface_driver.h"
#include "next.h"
#include "wireless_driver.h"

ZQSIM_NEXT(ioctl)

ZQSIM_HOOK int ioctl(int descriptor, unsigned long request, ...) noexcept {
  va_list rest;
  va_start(rest, request);
  void* const argument = va_arg(rest, void*);
  va_end(rest);
  if (IsI2cRequest(request)) {
    OpenDevice* const bus = FindDevice(descriptor, DeviceKind::kI2cBus);
    if (bus != nullptr) return AnswerI2c(*bus, request, argument);
  }
  if (IsWirelessRequest(descriptor, request)) return AnswerWireless(request, argument);
  if (IsInterfaceRequest(request) && IsDeviceSocket(descriptor)) return AnswerInterface(request, argument);
  return NEXT(ioctl)(descriptor, request, argument);
}
