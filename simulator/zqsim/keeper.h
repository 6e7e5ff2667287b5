// The process that keeps the system's scripts; see system_side.h.
#ifndef ZQSIM_KEEPER_H
#define ZQSIM_KEEPER_H

#include <filesystem>

#include "places.h"

struct KeeperTask {
  std::filesystem::path root;
  std::filesystem::path program;  // zq-system
  bool boot;
  int lifeline;  // its end is the keeper's
  int requests;  // for the scripts, as descriptor 3
};

// In a process of its own. Kills its process group, itself with it, when the lifeline breaks; never returns.
[[noreturn]] void Keep(const KeeperTask& task);

#endif
