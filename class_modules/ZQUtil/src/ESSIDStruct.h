// One network that a scan found.
#ifndef ZQUTIL_ESSID_STRUCT_H
#define ZQUTIL_ESSID_STRUCT_H

#include <cstdint>

// The driver's signal level, 0 to 255, as a strength.
constexpr int32_t StrengthOfLevel(uint8_t level) {
  return level - 142;
}

// Zero-filled from zq__calloc; record and name go back with zq__free.
struct _ESSIDStruct {
  char* ESSID;         // network name, owned; null while unknown
  int32_t strength;    // -142 to 113
  uint8_t encrypted;   // 1 when the network wants a key
  int32_t WPAVersion;  // 0 none, 1 WPA, 2 WPA2
  uint8_t TKIP;        // 1 when TKIP is offered
  uint8_t AES;         // 1 when CCMP is offered
};

#endif
