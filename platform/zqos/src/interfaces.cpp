#include <ifaddrs.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <cstdio>
#include <cstring>
#include <exception>
#include <map>
#include <memory>
#include <set>
#include <string>

#include "file_descriptor.h"
#include "interface_facts.h"
#include "zq_socket.h"

namespace {

// Any socket answers questions about interfaces.
class Questions {
 public:
  Questions() : socket_(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {}

  // -1 when there is none of that name.
  int IndexOf(const std::string& name) const {
    ifreq request{};
    if (name.empty() || name.size() >= sizeof request.ifr_name) return -1;
    memcpy(request.ifr_name, name.c_str(), name.size() + 1);
    return Ask(SIOCGIFINDEX, &request) ? request.ifr_ifindex : -1;
  }

  bool MacOf(int index, char text[ZQ_MAC_TEXT]) const {
    ifreq request{};
    request.ifr_ifindex = index;
    return index > 0 && Ask(SIOCGIFNAME, &request) && Ask(SIOCGIFHWADDR, &request) &&
           MacText(request.ifr_hwaddr, text);
  }

 private:
  bool Ask(unsigned long question, ifreq* request) const {
    return ioctl(socket_.Get(), question, request) == 0;
  }

  FileDescriptor socket_;
};

std::set<std::string> Names() {
  ifaddrs* first = nullptr;
  if (getifaddrs(&first) != 0) return {};
  const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> owner(first, &freeifaddrs);
  return InterfaceNames(first);
}

}  // namespace

int zq_SocketGetInterfaceCount(void) try {
  return static_cast<int>(Names().size());
} catch (const std::exception&) {
  return 0;
}

int zq_SocketFindInterfaceByName(const char* name) try {
  return name != nullptr ? Questions().IndexOf(name) : -1;
} catch (const std::exception&) {
  return -1;
}

bool zq_GetMACofInterface(int index, char text[ZQ_MAC_TEXT]) {
  text[0] = '\0';
  return Questions().MacOf(index, text);
}

bool zq_GetMACAddress(char text[ZQ_MAC_TEXT]) try {
  text[0] = '\0';
  const Questions questions;
  std::set<int> indices;
  for (const std::string& name : Names()) indices.insert(questions.IndexOf(name));
  for (const int index : indices) {
    if (questions.MacOf(index, text)) return true;
  }
  return false;
} catch (const std::exception&) {
  return false;
}
