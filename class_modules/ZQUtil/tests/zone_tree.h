// A zoneinfo tree of the device's own, in place of the machine's. Empty at first; gone with this object.
#ifndef ZQUTIL_TESTS_ZONE_TREE_H
#define ZQUTIL_TESTS_ZONE_TREE_H

#include <filesystem>
#include <string>

#include "TimeZoneTable.h"
#include "module_fixture.h"

class ZoneTree {
 public:
  ZoneTree() : place_(OnThisMachine(kZoneFolder)) { std::filesystem::create_directories(place_); }
  ZoneTree(const ZoneTree&) = delete;
  ZoneTree& operator=(const ZoneTree&) = delete;
  ~ZoneTree() { std::filesystem::remove_all(OnThisMachine("/usr")); }

  // Where this machine keeps what the device has at that place below the tree.
  std::filesystem::path Place(const std::string& below) const { return place_ / below; }
  // An empty file at that place, with the folders above it.
  void Install(const std::string& below) const {
    std::filesystem::create_directories(Place(below).parent_path());
    WriteFile(Place(below), "");
  }
  void InstallAll() const {
    for (const TimeZoneRow& row : tztable) Install(std::string(row.path).substr(sizeof kZoneFolder));
  }

 private:
  const std::filesystem::path place_;
};

#endif
