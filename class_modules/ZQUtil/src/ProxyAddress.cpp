#include "ProxyAddress.h"

#include <cstring>

#include "number_text.h"

ConnectionTarget ProxyOrAddress(const char* proxy, const char* host, int32_t port) {
  constexpr char kPrefix[] = "http://";
  constexpr size_t kPrefixLength = sizeof kPrefix - 1;
  if (proxy == nullptr || std::strlen(proxy) <= kPrefixLength) return {host, port};
  const char* const prefix = std::strstr(proxy, kPrefix);
  if (prefix == nullptr) return {host, port};
  const std::string address = prefix + kPrefixLength;
  const size_t colon = address.find(':');
  if (colon == std::string::npos) return {address, port};
  const int32_t proxyPort = DecimalNumber(address.c_str() + colon + 1);
  return {address.substr(0, colon), proxyPort != 0 ? proxyPort : port};
}
