// Tells when the machine's network interfaces or their addresses have changed.
#ifndef ZQ_NETLINK_WATCH_H
#define ZQ_NETLINK_WATCH_H

#include <optional>
#include <set>
#include <string>

#include "file_descriptor.h"

// One thread at a time.
class NetlinkWatch {
 public:
  // Begins to watch from the state of now. False, traced, when the system refuses.
  bool Open();
  // Readable when something may have changed; -1 before Open.
  int Descriptor() const { return socket_ ? socket_->Get() : -1; }

  enum class News { kNone, kChanged, kBroken };
  // To be called when the descriptor is readable. kChanged: interfaces, their being up or running, or their
  // addresses are not what they were at the last call; the kernel's notices alone say nothing, for they also
  // come for statistics and radio events. kBroken, traced: no more news will come.
  News Read();

 private:
  // A line for each interface with its flags and for each address; nothing when the system does not say.
  using Snapshot = std::set<std::string>;
  static std::optional<Snapshot> Take();

  std::optional<FileDescriptor> socket_;
  std::optional<Snapshot> last_;
};

#endif
