// The device's system beside the program: the script zq-system, fed by a keeper.
//
//   zqsim ──lifeline──► keeper ──a line for each event in DIR/tmp──► zq-system ──► S12network, zq-time, ...
//     ▲                                                                  │
//     └────────────────────────── requests ("reboot") ◄──────────────────┘
//
// Keeper and scripts are a process group of their own. When the lifeline breaks, because zqsim closes it or is gone in
// whatever way, the keeper kills the group.
#ifndef ZQSIM_SYSTEM_SIDE_H
#define ZQSIM_SYSTEM_SIDE_H

#include <sys/types.h>

#include <filesystem>

#include "owned_descriptor.h"
#include "places.h"

class SystemSide {
 public:
  // In a process that has entered the device. A boot sets up clock and network first. What the scripts say goes to the
  // end of DIR/var/log/zq-system.log.
  SystemSide(const std::filesystem::path& root, const Places& places, bool boot);
  SystemSide(const SystemSide&) = delete;
  SystemSide& operator=(const SystemSide&) = delete;
  // Ends it; nothing of it runs when this returns.
  ~SystemSide();

  // False when the machine has no process or descriptor left; one line on stderr said why.
  bool Runs() const { return keeper_ > 0; }
  // Readable when the system asks for a reboot.
  int Requests() const { return requests_.Get(); }
  // True when somebody has asked the system to end the device, which it has not done yet.
  bool HasMoreToDo() const;

 private:
  std::filesystem::path root_;
  pid_t keeper_ = -1;
  OwnedDescriptor lifeline_;
  OwnedDescriptor requests_;
};

#endif
