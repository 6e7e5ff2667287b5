#include "path_rules.h"

#include <gtest/gtest.h>

#include "lexical_path.h"

namespace {

constexpr DeviceView kView{"/tmp/box/device", "/tmp/work:/etc/host/:/tmp:/var"};

Owner Of(std::string_view path) {
  return OwnerOf(path, kView);
}

TEST(PathRules, EachRootAndAllBelowItIsTheDevices) {
  for (const PathRule& rule : DeviceRoots()) {
    EXPECT_EQ(Of(rule.prefix), rule.owner) << rule.prefix;
    EXPECT_EQ(Of(std::string(rule.prefix) + "/none/at/all"), rule.owner) << rule.prefix;
    EXPECT_EQ(Of(std::string(rule.prefix) + "x"), Owner::kMachine) << rule.prefix;
  }
}

TEST(PathRules, TheZonesAreTheFolderThatADeviceMayBring) {
  EXPECT_EQ(Of("/usr/share/zoneinfo/US/Eastern"), Owner::kSharedFolder);
  EXPECT_EQ(SharedFolderOf("/usr/share/zoneinfo/US/Eastern"), "/usr/share/zoneinfo");
  EXPECT_EQ(SharedFolderOf("/usr/share/zoneinfo"), "/usr/share/zoneinfo");
  EXPECT_EQ(Of("/usr/share"), Owner::kMachine);
  for (const PathRule& rule : Exceptions()) EXPECT_NE(rule.owner, Owner::kSharedFolder) << rule.prefix;
}

TEST(PathRules, EachExceptionLiesBelowARootAndDecidesThere) {
  for (const PathRule& rule : Exceptions()) {
    bool below = false;
    for (const PathRule& root : DeviceRoots()) below = below || IsAtOrBelow(rule.prefix, root.prefix);
    EXPECT_TRUE(below) << rule.prefix;
    EXPECT_NE(rule.owner, Owner::kDevice) << rule.prefix;
    EXPECT_EQ(Of(rule.prefix), rule.owner) << rule.prefix;
    EXPECT_EQ(Of(std::string(rule.prefix) + "/a"), rule.owner) << rule.prefix;
  }
}

TEST(PathRules, TheRestIsTheMachines) {
  for (const char* path :
       {"/", "/usr/lib/x.so", "/home/me", "/dev", "/dev/null", "/dev/i2c-01", "/var", "/var/lib", "/run"}) {
    EXPECT_EQ(Of(path), Owner::kMachine) << path;
  }
}

TEST(PathRules, ProcessesAreTheMachinesByTheirNumber) {
  EXPECT_EQ(Of("/proc/1"), Owner::kMachine);
  EXPECT_EQ(Of("/proc/4711/maps"), Owner::kMachine);
  EXPECT_EQ(Of("/proc/1a"), Owner::kDevice);
  EXPECT_EQ(Of("/proc/"), Owner::kDevice);
  EXPECT_EQ(Of("/proc/net/1"), Owner::kDevice);
}

TEST(PathRules, TheLongestPrefixDecides) {
  EXPECT_EQ(Of("/tmp/work"), Owner::kMachine);
  EXPECT_EQ(Of("/tmp/work/script.js"), Owner::kMachine);
  EXPECT_EQ(Of("/tmp/works"), Owner::kDevice);
  EXPECT_EQ(Of("/etc/host/x"), Owner::kMachine);
  EXPECT_EQ(Of("/etc/ssl/certs"), Owner::kShared);
}

TEST(PathRules, AHostPathDoesNotTakeARootAway) {
  EXPECT_EQ(Of("/tmp/do_S12"), Owner::kDevice);
  EXPECT_EQ(Of("/var/lib/zq/nvram0"), Owner::kDevice);
}

TEST(PathRules, WhatIsUnderTheRootAlreadyStays) {
  EXPECT_EQ(Of("/tmp/box/device/tmp/do_S12"), Owner::kMachine);
  EXPECT_EQ(Of("/tmp/box/device"), Owner::kMachine);
}

TEST(PathRules, FoldersOnTheWayToTheRootAreSeenByThemselves) {
  EXPECT_EQ(Of("/tmp/box"), Owner::kMachine);
  EXPECT_EQ(Of("/tmp/box/"), Owner::kMachine);
  EXPECT_EQ(Of("/tmp/box/other"), Owner::kDevice);
  EXPECT_EQ(Of("/tmp/bo"), Owner::kDevice);
  EXPECT_EQ(Of("/tmp/"), Owner::kDevice);
  EXPECT_EQ(OwnerOf("/tmp/a", {"/home/device", "/tmp/a/b"}), Owner::kMachine);
  EXPECT_EQ(OwnerOf("/tmp/a/c", {"/home/device", "/tmp/a/b"}), Owner::kDevice);
}

TEST(PathRules, ADeviceSeesItsPathsWithoutTheRoot) {
  EXPECT_EQ(SeenFromDevice("/tmp/box/device/etc/a", kView), "/etc/a");
  EXPECT_EQ(SeenFromDevice("/tmp/box/device/etc", kView), "/etc");
  // Not reached by those paths from inside: the device's own folder, and what no rule maps there.
  EXPECT_EQ(SeenFromDevice("/tmp/box/device", kView), "/tmp/box/device");
  EXPECT_EQ(SeenFromDevice("/tmp/box/device/cache/a", kView), "/tmp/box/device/cache/a");
  EXPECT_EQ(SeenFromDevice("/tmp/box/device/proc/self", kView), "/tmp/box/device/proc/self");
  EXPECT_EQ(SeenFromDevice("/tmp/box/devices/etc", kView), "/tmp/box/devices/etc");
  EXPECT_EQ(SeenFromDevice("/usr/lib", kView), "/usr/lib");
}

TEST(PathRules, DriverFilesAreThoseOfTheKernelsTrees) {
  EXPECT_TRUE(IsDriverFile("/proc/blctrl"));
  EXPECT_TRUE(IsDriverFile("/sys/class"));
  EXPECT_FALSE(IsDriverFile("/etc/a"));
  EXPECT_FALSE(IsDriverFile("/process"));
}

}  // namespace
