// The C library's questions about network interfaces. The machine has no "ra0".
#include <ifaddrs.h>
#include <net/if.h>

#include <cstring>

#include "probe.h"

namespace {

constexpr const char* kName = "ra0";

// What is listed is given back too.
bool ListsAddresses() {
  ifaddrs* first = nullptr;
  if (getifaddrs(&first) != 0) return false;
  bool found = false;
  for (const ifaddrs* at = first; at != nullptr; at = at->ifa_next)
    found = found || strcmp(at->ifa_name, kName) == 0;
  freeifaddrs(first);
  return found;
}

bool ListsNames() {
  struct if_nameindex* const names = if_nameindex();
  if (names == nullptr) return false;
  bool found = false;
  for (int i = 0; names[i].if_index != 0; ++i) found = found || strcmp(names[i].if_name, kName) == 0;
  if_freenameindex(names);
  return found;
}

bool FindsTheIndex() {
  return if_nametoindex(kName) != 0;
}

bool FindsTheName() {
  char name[IF_NAMESIZE] = "";
  return if_indextoname(if_nametoindex(kName), name) != nullptr && strcmp(name, kName) == 0;
}

constexpr ProbeRow kRows[] = {
    {"freeifaddrs", ListsAddresses},  {"getifaddrs", ListsAddresses}, {"if_freenameindex", ListsNames},
    {"if_indextoname", FindsTheName}, {"if_nameindex", ListsNames},   {"if_nametoindex", FindsTheIndex},
};

}  // namespace

std::span<const ProbeRow> InterfaceRows() {
  return kRows;
}
