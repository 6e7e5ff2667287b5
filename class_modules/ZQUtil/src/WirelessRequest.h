// Requests of the wireless extensions that carry data.
#ifndef ZQUTIL_WIRELESS_REQUEST_H
#define ZQUTIL_WIRELESS_REQUEST_H

#include <iwlib.h>

#include "NetworkSocket.h"

// A driver's own request: which scan type it is to keep, the text "active" or "passive" without a terminator.
constexpr unsigned long kWirelessScanType = SIOCIWFIRSTPRIV + 0x0B;

// Asks the interface's driver, with `length` bytes of data. The request's result, and errno; `*reported` is the length
// that the driver left.
inline int AskDriver(const NetworkSocket& socket, const char* interface, unsigned long number, void* data,
                     size_t length, uint16_t flags, uint16_t* reported = nullptr) {
  iwreq request{};
  strncpy(request.ifr_ifrn.ifrn_name, interface, IFNAMSIZ - 1);
  request.u.data.pointer = data;
  request.u.data.length = static_cast<uint16_t>(length);
  request.u.data.flags = flags;
  const int result = socket.Ask(number, &request);
  if (reported != nullptr) *reported = request.u.data.length;
  return result;
}

#endif
