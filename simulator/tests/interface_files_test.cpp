// The kernel's files about network interfaces, as a program on the device reads them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "temp_dir.h"

namespace {

namespace fs = std::filesystem;

std::string OfDevice(const std::string& path) {
  return std::getenv("ZQ_DEVICE") + path;
}

// As a person does, in another tick of the file system's clock than whatever was written before.
void Edit(const std::string& path, const std::string& text) {
  AwaitFileTick();
  WriteFile(OfDevice(path), text);
}

class InterfaceFiles : public testing::Test {
 protected:
  InterfaceFiles() {
    fs::create_directories(OfDevice("/hw/ra0"));
    Edit("/hw/eth0.ini", "");
    Edit("/hw/ra0/link.ini", "");
  }
};

TEST_F(InterfaceFiles, TheLinkFollowsTheCable) {
  Edit("/hw/eth0.ini", "[link]\nup = yes\ncable = plugged\n");
  EXPECT_EQ(ReadFile("/sys/class/net/eth0/operstate"), "up\n");
  EXPECT_EQ(ReadFile("/sys/class/net/eth0/carrier"), "1\n");
  EXPECT_EQ(ReadFile("/sys/class/net/ra0/operstate"), "down\n");
  Edit("/hw/eth0.ini", "[link]\nup = yes\ncable = unplugged\n");
  EXPECT_EQ(ReadFile("/sys/class/net/eth0/operstate"), "down\n");
  EXPECT_EQ(ReadFile("/sys/class/net/eth0/carrier"), "0\n");
}

TEST_F(InterfaceFiles, TheRadiosLinkFilesFollowItsQuality) {
  Edit("/hw/ra0/link.ini", "[link]\nup = yes\nassociated = yes\nessid = Lindenhof\nquality = 44\n");
  EXPECT_EQ(ReadFile("/sys/class/net/ra0/wireless/link"), "44\n");
  EXPECT_EQ(ReadFile("/sys/devices/virtual/net/ra0/wireless/link"), "44\n");
  EXPECT_EQ(ReadFile("/sys/class/net/ra0/operstate"), "up\n");
}

TEST_F(InterfaceFiles, TheRadiosLinkFilesFollowTheCell) {
  Edit("/hw/ra0/cells.ini", "[Werkstatt]\nquality = 38\n[Lindenhof]\nquality = 92\n");
  Edit("/hw/ra0/link.ini", "[link]\nup = yes\nassociated = yes\nessid = Lindenhof\nquality =\n");
  EXPECT_EQ(ReadFile("/sys/class/net/ra0/wireless/link"), "92\n");
  Edit("/hw/ra0/cells.ini", "[Lindenhof]\nquality = 17\n");
  EXPECT_EQ(ReadFile("/sys/class/net/ra0/wireless/link"), "17\n");
}

TEST_F(InterfaceFiles, TheRoutesFollowBothInterfaces) {
  Edit("/hw/eth0.ini", "[link]\nup = yes\n[address]\nip = 192.168.1.2\ngateway = 192.168.1.1\n");
  Edit("/hw/ra0/link.ini", "[link]\nup = yes\n[address]\nip = 192.168.2.2\ngateway = 192.168.2.1\n");
  const std::string title =
      "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";
  const std::string wired =
      "eth0\t00000000\t0101A8C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n"
      "eth0\t0001A8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n";
  const std::string radio =
      "ra0\t00000000\t0102A8C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n"
      "ra0\t0002A8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n";
  EXPECT_EQ(ReadFile("/proc/net/route"), title + wired + radio);
  Edit("/hw/ra0/link.ini", "[link]\nup = no\n[address]\nip = 192.168.2.2\ngateway = 192.168.2.1\n");
  EXPECT_EQ(ReadFile("/proc/net/route"), title + wired);
}

TEST_F(InterfaceFiles, WhatAHandWritesThereStaysUntilTheInterfaceChanges) {
  Edit("/proc/net/route", "by hand");
  EXPECT_EQ(ReadFile("/proc/net/route"), "by hand");
  EXPECT_EQ(ReadFile("/proc/net/route"), "by hand");
  Edit("/hw/eth0.ini", "[link]\nup = yes\n");
  EXPECT_NE(ReadFile("/proc/net/route"), "by hand");
}

TEST_F(InterfaceFiles, AProgramThatWritesThereJustNowIsHeard) {
  WriteFile(OfDevice("/hw/eth0.ini"), "[link]\nup = yes\ncable = plugged\n");
  WriteFile("/sys/class/net/eth0/operstate", "dormant\n");
  EXPECT_EQ(ReadFile("/sys/class/net/eth0/operstate"), "dormant\n");
  Edit("/hw/eth0.ini", "[link]\nup = yes\ncable = plugged\n");
  EXPECT_EQ(ReadFile("/sys/class/net/eth0/operstate"), "up\n");
}

TEST_F(InterfaceFiles, ChangesInQuickSuccessionAreAllSeen) {
  for (int i = 0; i < 200; ++i) {
    const bool plugged = i % 2 == 0;
    WriteFile(OfDevice("/hw/eth0.ini"),
              std::string("[link]\nup = yes\ncable = ") + (plugged ? "plugged" : "unplugged"));
    ASSERT_EQ(ReadFile("/sys/class/net/eth0/operstate"), plugged ? "up\n" : "down\n") << i;
  }
}

TEST_F(InterfaceFiles, AFileThatTheDeviceLacksIsNotMade) {
  fs::rename(OfDevice("/sys/class/net/ra0/wireless/link"), OfDevice("/hw/kept"));
  Edit("/hw/ra0/link.ini", "[link]\nup = yes\nassociated = yes\nquality = 44\n");
  EXPECT_FALSE(fs::exists("/sys/class/net/ra0/wireless/link"));
  fs::rename(OfDevice("/hw/kept"), OfDevice("/sys/class/net/ra0/wireless/link"));
  EXPECT_EQ(ReadFile("/sys/class/net/ra0/wireless/link"), "44\n");
}

TEST_F(InterfaceFiles, NothingIsLeftBesideTheFile) {
  Edit("/hw/eth0.ini", "[link]\nup = yes\ncable = plugged\n");
  ReadFile("/sys/class/net/eth0/operstate");
  ReadFile("/sys/class/net/eth0/carrier");
  int entries = 0;
  for ([[maybe_unused]] const auto& entry : fs::directory_iterator(OfDevice("/sys/class/net/eth0")))
    ++entries;
  EXPECT_EQ(entries, 3) << "address, carrier, operstate";
}

}  // namespace
