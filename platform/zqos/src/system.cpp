#include <cstdio>
#include <ctime>

#include "zq_clock.h"
#include "zq_system.h"

uint32_t zq_SecondsIntoMonth(void) {
  const timespec now = zq_ClockGet()->Wall();
  tm date{};
  if (gmtime_r(&now.tv_sec, &date) == nullptr) return 0;
  return static_cast<uint32_t>((((date.tm_mday - 1) * 24 + date.tm_hour) * 60 + date.tm_min) * 60 +
                               date.tm_sec);
}

size_t zqOS_GetVersion(char* buffer, size_t size) {
  return static_cast<size_t>(snprintf(buffer, buffer != nullptr ? size : 0, "%s", ZQOS_VERSION));
}
