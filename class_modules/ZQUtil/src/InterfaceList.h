// The addresses of the machine's interfaces, an entry each, and which of them is the current interface's. Rules over what
// the kernel answered; who asks it is InterfaceProbes.cpp.
#ifndef ZQUTIL_INTERFACE_LIST_H
#define ZQUTIL_INTERFACE_LIST_H

#include <net/if.h>
#include <netinet/in.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

// Fills the room with entries. The bytes that were filled; nothing when the kernel refuses.
using FillInterfaces = std::function<std::optional<size_t>(ifreq* room, size_t bytes)>;

// All entries: the room for ten is doubled and filled again as long as it comes back full to the brim, because then there
// may be more. Nothing when the kernel refuses.
std::optional<std::vector<ifreq>> ListInterfaces(const FillInterfaces& fill);

// Whether the entry is one of the interface, by its first four characters, in any case. The end of a shorter name counts
// as one, so "eth0" is also "eth0:1", and "ra0" nothing but "ra0".
bool IsEntryOf(const ifreq& entry, const char* interface);

// What the walk over the entries asks the kernel; nothing when it refuses.
struct InterfaceQuestions {
  std::function<std::optional<short>(const ifreq& entry)> flags;
  std::function<std::optional<in_addr>(const ifreq& entry)> address;
};

// The address of the interface's last IPv4 entry that is up, dotted; "" for none. The flags of every IPv4 entry are asked
// for, the address only of those that count.
std::string AddressOf(const char* interface, const std::vector<ifreq>& entries,
                      const InterfaceQuestions& questions);

// The entry's own address.
in_addr EntryAddress(const ifreq& entry);

#endif
