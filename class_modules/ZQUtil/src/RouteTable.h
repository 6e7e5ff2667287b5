// The kernel's table of routes as text: fields between tabs, of which the second is the destination and the third the
// gateway, both as eight hexadecimal digits of a word in the machine's byte order.
#ifndef ZQUTIL_ROUTE_TABLE_H
#define ZQUTIL_ROUTE_TABLE_H

#include <string_view>

// A dotted address; "" for none.
struct DottedAddress {
  char text[16] = {};
};

// From the gateway to the end of a line whose destination begins with eight zeros, when more than eight characters are
// there; empty for any other line.
std::string_view DefaultRouteGateway(std::string_view line);
// The address at the start of what DefaultRouteGateway gave; "" when it does not begin with eight hexadecimal digits.
DottedAddress GatewayAddress(std::string_view gateway);

#endif
