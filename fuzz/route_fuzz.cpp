// Any bytes as the kernel's table of routes.
#include <arpa/inet.h>
#include <strings.h>
#include <sys/mman.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "LineFile.h"
#include "RouteTable.h"

namespace {

void Require(bool holds) {
  if (!holds) abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const int bytes = memfd_create("route", MFD_CLOEXEC);
  Require(write(bytes, data, size) == static_cast<ssize_t>(size) && lseek(bytes, 0, SEEK_SET) == 0);
  LineFile<255> file(bytes);
  while (file.Next()) {
    const std::string_view line = file.Text();
    const std::string_view gateway = DefaultRouteGateway(line);
    if (gateway.empty()) continue;
    Require(gateway.size() > 8 && line.ends_with(gateway) &&
            line.find("\t00000000") != std::string_view::npos);
    const DottedAddress dotted = GatewayAddress(gateway);
    if (dotted.text[0] == '\0') continue;
    in_addr address{};
    Require(inet_pton(AF_INET, dotted.text, &address) == 1);
    char digits[9] = {};
    snprintf(digits, sizeof digits, "%08X", ntohl(address.s_addr));
    for (size_t pair = 0; pair < 4; ++pair) {
      const std::string_view written = gateway.substr(6 - 2 * pair, 2);
      Require(strncasecmp(written.data(), digits + 2 * pair, 2) == 0);
    }
  }
  return 0;
}
