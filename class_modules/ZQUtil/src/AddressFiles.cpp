// The default gateway and the name servers, as the system's files say.
#include "LineFile.h"
#include "OwnedText.h"
#include "ResolverFile.h"
#include "RouteTable.h"
#include "ZQNetwork.h"
#include "ZQUtilTrace.h"
#include "zq_memory.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQNetwork";
constexpr size_t kMostOfRoute = 255;
constexpr size_t kMostOfResolver = 999;

char* NewText(const std::string& text) {
  return zq__newString(text.c_str(), kSourceTag, __LINE__);
}

ResolverFile ReadResolverFile() {
  ResolverFile servers;
  LineFile<kMostOfResolver> file("/etc/resolv.conf");
  while (file.Ok() && file.Next()) servers.AddLine(file.Text());
  return servers;
}

}  // namespace

char* ZQNetwork::getGateway() {
  DottedAddress last{"0.0.0.0"};
  ZQUTIL_TRACE("Opening /proc/net/route\n");
  LineFile<kMostOfRoute> file("/proc/net/route");
  while (file.Ok() && file.Next()) {
    ZQUTIL_TRACE("Processing %s\n", file.Text());
    const std::string_view gateway = DefaultRouteGateway(file.Text());
    if (gateway.empty()) continue;
    // Ends where the line does, so it is NUL-terminated like it.
    ZQUTIL_TRACE("Gateway starts %s\n", gateway.data());
    const DottedAddress address = GatewayAddress(gateway);
    if (address.text[0] == '\0') continue;
    ZQUTIL_TRACE("Gateway is %s\n", address.text);
    last = address;
  }
  return zq__newString(last.text, kSourceTag, __LINE__);
}

void ZQNetwork::getDNSInfo(char** primary, char** secondary, char** third) {
  const ResolverFile servers = ReadResolverFile();
  *primary = NewText(servers.First());
  *secondary = NewText(servers.Second());
  *third = NewText(servers.Third());
}

char* ZQNetwork::getPrimaryDNS() {
  char* primary = nullptr;
  char* secondary = nullptr;
  char* third = nullptr;
  getDNSInfo(&primary, &secondary, &third);
  const OwnedText unwanted[] = {OwnedText(secondary), OwnedText(third)};
  return primary;
}

char* ZQNetwork::getSecondaryDNS() {
  char* primary = nullptr;
  char* secondary = nullptr;
  char* third = nullptr;
  getDNSInfo(&primary, &secondary, &third);
  const OwnedText unwanted[] = {OwnedText(primary), OwnedText(third)};
  return secondary;
}
