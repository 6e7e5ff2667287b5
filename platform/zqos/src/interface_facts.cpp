#include "interface_facts.h"

#include <net/if.h>
#include <net/if_arp.h>

#include <algorithm>
#include <cstdio>

namespace {

bool HasSixBytes(int kind) {
  return kind == ARPHRD_ETHER || kind == ARPHRD_IEEE80211 || kind == ARPHRD_IEEE80211_PRISM ||
         kind == ARPHRD_IEEE80211_RADIOTAP;
}

}  // namespace

std::set<std::string> InterfaceNames(const ifaddrs* addresses) {
  std::set<std::string> names;
  for (const ifaddrs* one = addresses; one != nullptr; one = one->ifa_next) {
    if (one->ifa_name == nullptr || (one->ifa_flags & IFF_LOOPBACK) != 0) continue;
    const std::string label = one->ifa_name;
    names.insert(label.substr(0, label.find(':')));
  }
  return names;
}

bool MacText(const sockaddr& hardware, char text[ZQ_MAC_TEXT]) {
  const auto* bytes = reinterpret_cast<const unsigned char*>(hardware.sa_data);
  if (!HasSixBytes(hardware.sa_family) ||
      std::all_of(bytes, bytes + 6, [](unsigned char b) { return b == 0; }))
    return false;
  snprintf(text, ZQ_MAC_TEXT, "%02x:%02x:%02x:%02x:%02x:%02x", bytes[0], bytes[1], bytes[2], bytes[3],
           bytes[4], bytes[5]);
  return true;
}
