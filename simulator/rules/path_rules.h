// Whose is a path: the simulated device's or the machine's? Decided over text alone; no allocation, no lock.
//
// The rules are the tables in path_rules.cpp. Of several that match, the one with the longest prefix decides;
// of two of one length the tables', so that a host path "/tmp" does not take the device's /tmp away.
#ifndef ZQSIM_PATH_RULES_H
#define ZQSIM_PATH_RULES_H

#include <span>
#include <string_view>

enum class Owner {
  kMachine,  // the machine's file, whatever is done to it
  kDevice,   // the file of that path under the device's root, or none
  kShared,   // the device's when it has one, else the machine's to read; a change is always the device's
  // The same of a whole folder: one that the device brings hides all of the machine's.
  kSharedFolder
};

struct PathRule {
  std::string_view prefix;  // decides for itself and all below it
  Owner owner;
  const char* reason;
};

// The device's own places, and a folder that it may bring.
std::span<const PathRule> DeviceRoots();
// What below them is the machine's after all, or shared; each lies below a root, so is longer.
std::span<const PathRule> Exceptions();

// Where the device is, and what else of the machine stays visible. The folders on the way to these are
// visible too, each by itself.
struct DeviceView {
  std::string_view root;       // absolute, canonical, without a trailing "/"
  std::string_view hostPaths;  // absolute prefixes, colon-separated; may be empty
};

// The owner of an absolute path without dots (see lexical_path.h).
Owner OwnerOf(std::string_view path, const DeviceView& view);

// The folder that decides for a path whose owner is kSharedFolder.
std::string_view SharedFolderOf(std::string_view path);

// The same device path when `path`, absolute and without dots, is one under the device's root that a process
// on the device reaches without it; else `path` unchanged.
std::string_view SeenFromDevice(std::string_view path, const DeviceView& view);

// How a driver's file differs from a plain one: each opening for writing replaces the whole value, and no
// entry comes or goes by a call.
bool IsDriverFile(std::string_view path);

#endif
