// Whom to connect to: the host that is meant, or the proxy in between.
#ifndef ZQUTIL_PROXY_ADDRESS_H
#define ZQUTIL_PROXY_ADDRESS_H

#include <cstdint>
#include <string>

struct ConnectionTarget {
  std::string host;
  int32_t port;
};

// `proxy` is the value of "http_proxy", null when it is not set. It counts when it is longer than 7 characters and
// "http://" stands in it; what follows that is the proxy's host and, after the first ":", its port. Without a port, or
// with 0, the proxy has the given one. A "/" or path at the end of a proxy without a port stays part of the host.
ConnectionTarget ProxyOrAddress(const char* proxy, const char* host, int32_t port);

#endif
