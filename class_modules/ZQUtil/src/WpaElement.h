// The information element by which a network says that it is protected, as IEEE 802.11 lays it out:
//
//   WPA  221, length, 00:50:F2 and 1, version (2 bytes) | group cipher, pairwise ciphers, authentication suites,
//   RSN  48, length, version (2 bytes)                  | capabilities
//
// A selector (of a cipher or a suite) is an OUI and a type, a list is its count (2 bytes, low first) and its selectors.
// An element may end after any part.
#ifndef ZQUTIL_WPA_ELEMENT_H
#define ZQUTIL_WPA_ELEMENT_H

#include <cstdint>

#include "ESSIDStruct.h"

// Adds to the record's WPAVersion, TKIP and AES what the element says, and traces the rest. `held` bytes are there;
// nothing beyond them is read, whatever the element says of its length. What does not fit ends the reading.
void ReadWpaElement(const uint8_t* bytes, int32_t held, _ESSIDStruct* record);

#endif
