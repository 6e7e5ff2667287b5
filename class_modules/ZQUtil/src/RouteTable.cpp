#include "RouteTable.h"

#include <charconv>
#include <cstdint>
#include <cstdio>

namespace {

constexpr std::string_view kAnywhere = "00000000";
constexpr size_t kDigits = 8;

}  // namespace

std::string_view DefaultRouteGateway(std::string_view line) {
  const size_t interfaceEnd = line.find('\t');
  if (interfaceEnd == std::string_view::npos) return {};
  line.remove_prefix(interfaceEnd + 1);
  if (line.substr(0, kAnywhere.size()) != kAnywhere) return {};
  const size_t destinationEnd = line.find('\t');
  if (destinationEnd == std::string_view::npos) return {};
  line.remove_prefix(destinationEnd + 1);
  return line.size() > kDigits ? line : std::string_view{};
}

DottedAddress GatewayAddress(std::string_view gateway) {
  DottedAddress address;
  if (gateway.size() < kDigits) return address;
  uint32_t word = 0;
  const char* const end = gateway.data() + kDigits;
  const auto [stop, error] = std::from_chars(gateway.data(), end, word, 16);
  if (error != std::errc{} || stop != end) return address;
  // The word's digits stand most significant first, the address's first byte is the least significant one.
  std::snprintf(address.text, sizeof address.text, "%u.%u.%u.%u", word & 0xFFU, word >> 8 & 0xFFU,
                word >> 16 & 0xFFU, word >> 24 & 0xFFU);
  return address;
}
