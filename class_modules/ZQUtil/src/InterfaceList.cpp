#include "InterfaceList.h"

#include <arpa/inet.h>
#include <strings.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr size_t kFirstRoom = 10;
// More than any device has: an answer that is full to the brim beyond this is taken as it is.
constexpr size_t kMostRoom = 65536;
constexpr size_t kComparedCharacters = 4;

}  // namespace

std::optional<std::vector<ifreq>> ListInterfaces(const FillInterfaces& fill) {
  for (size_t room = kFirstRoom;; room *= 2) {
    std::vector<ifreq> entries(room);
    const std::optional<size_t> bytes = fill(entries.data(), room * sizeof(ifreq));
    if (!bytes) return std::nullopt;
    const size_t count = *bytes / sizeof(ifreq);
    if (count == room && room < kMostRoom) continue;
    entries.resize(std::min(count, room));
    return entries;
  }
}

bool IsEntryOf(const ifreq& entry, const char* interface) {
  return strncasecmp(entry.ifr_name, interface, kComparedCharacters) == 0;
}

std::string AddressOf(const char* interface, const std::vector<ifreq>& entries,
                      const InterfaceQuestions& questions) {
  std::string text;
  for (const ifreq& entry : entries) {
    if (entry.ifr_addr.sa_family != AF_INET) continue;
    const std::optional<short> flags = questions.flags(entry);
    if (!flags || (*flags & IFF_UP) == 0 || !IsEntryOf(entry, interface)) continue;
    const std::optional<in_addr> address = questions.address(entry);
    char dotted[INET_ADDRSTRLEN] = {};
    if (address && inet_ntop(AF_INET, &*address, dotted, sizeof dotted) != nullptr) text = dotted;
  }
  return text;
}

in_addr EntryAddress(const ifreq& entry) {
  sockaddr_in address{};
  std::memcpy(&address, &entry.ifr_addr, sizeof address);
  return address.sin_addr;
}
