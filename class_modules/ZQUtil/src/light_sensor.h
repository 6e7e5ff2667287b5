// The light-sensor thread: with automatic dimming on it reads the light and drives the backlight.
//
//   idle        dimming is off             looks again each second
//   measuring   dimming is on              both devices are opened and closed in every cycle, without a pause
//   ramping     the light changed a lot    20 ms a step; nothing cuts a ramp short
//   ended       asked to, followed by a newer thread, or a device could not be opened or addressed
#ifndef ZQUTIL_LIGHT_SENSOR_H
#define ZQUTIL_LIGHT_SENSOR_H

#include <atomic>
#include <cstdint>

#include "module_api.h"

// The light reading last applied, 0 to 65535. Changed by the thread alone.
extern std::atomic<uint32_t> olddat;

// Thread body. Returns 0 when it ends on request, -1 when a device could not be opened or addressed. The
// screen may be gone long before the thread: it is not touched.
ZQUTIL_API int32_t threadAutoScreenDim(void* screen);

// Selects the chip, by its 7-bit address, that transfers on an open bus go to. -1, and errno, on failure,
// else 0.
ZQUTIL_API int setslaveadr(int fd, unsigned char address);

#endif
