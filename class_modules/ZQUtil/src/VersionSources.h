// The device's versions, read from where they are kept. Any thread.
#ifndef ZQUTIL_VERSION_SOURCES_H
#define ZQUTIL_VERSION_SOURCES_H

#include <cstdint>

// Sets the properties "Firmware" and "Software" of a script object, in this order. A device identity greater than 0 is
// shown with the firmware.
void SetVersionProperties(void* object, int32_t deviceId);

#endif
