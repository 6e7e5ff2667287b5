// The radio's driver, as a program on the device meets it through the kernel's interface and the wireless library.
#include <gtest/gtest.h>
#include <iwlib.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "temp_dir.h"

namespace {

std::string Hardware(const std::string& name) {
  return std::string(std::getenv("ZQ_DEVICE")) + "/hw/ra0/" + name;
}

class RadioTest : public testing::Test {
 protected:
  RadioTest() {
    SetRadio("[link]\n");
    SetCells("");
    WriteFile(Hardware("calls"), "");
  }
  ~RadioTest() override { close(socket_); }

  static void SetRadio(const std::string& text) { WriteFile(Hardware("link.ini"), text); }
  static void SetCells(const std::string& text) { WriteFile(Hardware("cells.ini"), text); }
  static std::string Calls() {
    std::string calls = ReadFile(Hardware("calls"));
    WriteFile(Hardware("calls"), "");
    return calls;
  }

  // 0, or the error.
  int Ask(unsigned long number, void* data, size_t length, uint16_t flags = 0, const char* name = "ra0") {
    request = {};
    std::snprintf(request.ifr_ifrn.ifrn_name, IFNAMSIZ, "%s", name);
    request.u.data.pointer = data;
    request.u.data.length = static_cast<uint16_t>(length);
    request.u.data.flags = flags;
    return ioctl(socket_, number, &request) == 0 ? 0 : errno;
  }
  int Scan() { return Ask(SIOCSIWSCAN, nullptr, 0); }
  int Results(size_t size = 4096) {
    buffer.assign(size, 0);
    return Ask(SIOCGIWSCAN, buffer.data(), size);
  }
  // The names that the wireless library finds in the last results.
  std::string Names(int version = 22) {
    std::string names;
    stream_descr stream;
    iw_init_event_stream(&stream, buffer.data(), request.u.data.length);
    iw_event event;
    while (iw_extract_event_stream(&stream, &event, version) > 0) {
      if (event.cmd != SIOCGIWESSID) continue;
      const auto* const name = static_cast<const char*>(event.u.essid.pointer);
      names += name != nullptr ? std::string(name, event.u.essid.length) + "\n" : "?\n";
    }
    return names;
  }

  int socket_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  iwreq request{};
  std::vector<char> buffer;
};

TEST_F(RadioTest, TellsItsRangeToTheWirelessLibrary) {
  iw_range range;
  ASSERT_EQ(iw_get_range_info(socket_, "ra0", &range), 0);
  EXPECT_EQ(range.we_version_compiled, 22);
  EXPECT_EQ(range.enc_capa, 15U);
  for (const int version : {17, 16, 15, 14, 13, 11}) {
    SetRadio("[driver]\nversion = " + std::to_string(version));
    ASSERT_EQ(iw_get_range_info(socket_, "ra0", &range), 0);
    EXPECT_EQ(range.we_version_compiled, version);
    EXPECT_EQ(range.enc_capa, version > 15 ? 15U : 0U);
  }
  EXPECT_EQ(Ask(SIOCGIWNAME, nullptr, 0), 0);
  EXPECT_STREQ(request.u.name, "IEEE 802.11bgn");
}

TEST_F(RadioTest, TellsTheCellsInEveryLayoutThatAProgramHereCanRead) {
  SetCells("[first]\nsecurity = mixed\n[second]\nhidden = yes\n[third one]\n");
  for (const char* layout : {"64", "32"}) {
    SetRadio(std::string("[driver]\nlayout = ") + layout);
    ASSERT_EQ(Scan(), 0);
    ASSERT_EQ(Results(), 0);
    EXPECT_EQ(Names(), "first\n?\nthird one\n");
  }
  SetRadio("[driver]\nversion = 18");
  ASSERT_EQ(Results(), 0);
  EXPECT_EQ(Names(18), "first\n?\nthird one\n");
}

TEST_F(RadioTest, FollowsThePersonWhoChangesTheAir) {
  Scan();
  EXPECT_EQ(Results(), 0);
  EXPECT_EQ(request.u.data.length, 0);
  SetCells("[a]");
  EXPECT_EQ(Results(), 0);
  EXPECT_EQ(Names(), "a\n");
  std::filesystem::remove(Hardware("cells.ini"));
  EXPECT_EQ(Results(), 0);
  EXPECT_EQ(request.u.data.length, 0);
}

TEST_F(RadioTest, RefusesABufferThatIsTooSmall) {
  SetCells("[a]");
  Scan();
  ASSERT_EQ(Results(), 0);
  const uint16_t needed = request.u.data.length;
  EXPECT_EQ(Results(needed), 0);
  EXPECT_EQ(Results(needed - 1U), E2BIG);
  EXPECT_EQ(request.u.data.length, needed);
  EXPECT_EQ(buffer, std::vector<char>(needed - 1U, 0));
  SetRadio("[driver]\nwants_bytes = 6000");
  EXPECT_EQ(Results(), E2BIG);
  EXPECT_EQ(request.u.data.length, 6000);
  EXPECT_EQ(Results(6000), 0);
  EXPECT_EQ(request.u.data.length, needed);
  SetRadio("[driver]\nwants_bytes = 70000\ntells_length = yes");
  EXPECT_EQ(Results(65535), E2BIG);
  EXPECT_EQ(request.u.data.length, 65535);
  SetRadio("[driver]\nwants_bytes = 6000\ntells_length = no");
  EXPECT_EQ(Results(), E2BIG);
  EXPECT_EQ(request.u.data.length, 4096);
}

TEST_F(RadioTest, HasNoResultsBeforeTheScanIsDone) {
  SetRadio("[driver]\nresults_ms = 3600000");
  SetCells("[a]");
  ASSERT_EQ(Scan(), 0);
  EXPECT_EQ(Results(), EAGAIN);
  SetRadio("[driver]\nresults_ms = 1");
  while (Results() == EAGAIN) usleep(200);
  EXPECT_EQ(Names(), "a\n");
}

TEST_F(RadioTest, TellsAHiddenNameToTheOneWhoAsksForIt) {
  SetCells("[secret]\nhidden = yes");
  iw_scan_req wanted{};
  wanted.essid_len = 6;
  memcpy(wanted.essid, "secret", 6);
  ASSERT_EQ(Ask(SIOCSIWSCAN, &wanted, sizeof wanted, IW_SCAN_THIS_ESSID), 0);
  ASSERT_EQ(Results(), 0);
  EXPECT_EQ(Names(), "secret\n");
  ASSERT_EQ(Scan(), 0);
  ASSERT_EQ(Results(), 0);
  EXPECT_EQ(Names(), "?\n");
  wanted.essid_len = 33;
  EXPECT_EQ(Ask(SIOCSIWSCAN, &wanted, sizeof wanted, IW_SCAN_THIS_ESSID), EINVAL);
  EXPECT_EQ(Ask(SIOCSIWSCAN, &wanted, 3, IW_SCAN_THIS_ESSID), EINVAL);
}

TEST_F(RadioTest, TakesItsTwoScanTypes) {
  char active[] = "active";
  char passive[] = "passive";
  EXPECT_EQ(Ask(0x8BEB, active, 6), 0);
  EXPECT_EQ(Ask(0x8BEB, passive, 7), 0);
  EXPECT_EQ(Ask(0x8BEB, active, 7), EINVAL);
  EXPECT_EQ(Ask(0x8BEB, nullptr, 6), EFAULT);
  EXPECT_EQ(Calls().substr(0, 47), "scan_type active: done\nscan_type passive: done\n");
}

TEST_F(RadioTest, TellsTheLinkThatAPersonSets) {
  const auto Quality = [this] {
    iw_statistics statistics{};
    EXPECT_EQ(Ask(SIOCGIWSTATS, &statistics, sizeof statistics, 1), 0);
    return std::to_string(statistics.qual.level) + " " + std::to_string(statistics.qual.qual);
  };
  const auto Status = [this] {
    std::array<char, 2047> text{};
    EXPECT_EQ(Ask(0x8BF1, text.data(), text.size(), 4), 0);
    return std::string(text.data());
  };
  SetCells("[far]\nlevel = 150\nquality = 10\n[near]\nlevel = 200\nquality = 90");
  EXPECT_EQ(Quality() + " " + Status(), "0 0 Not associated");
  SetRadio("[link]\nassociated = yes\nessid = near");
  EXPECT_EQ(Quality() + " " + Status(), "200 90 Connected to near");
  SetRadio("[link]\nassociated = yes\nessid = near\nlevel = 3\nquality = 4");
  EXPECT_EQ(Quality(), "3 4");
  SetRadio("[link]\nassociated = yes\nessid = gone");
  EXPECT_EQ(Quality() + " " + Status(), "0 0 Connected to gone");
  char room[4];
  EXPECT_EQ(Ask(0x8BF1, room, sizeof room), E2BIG);
}

TEST_F(RadioTest, FailsAsAPersonWantsIt) {
  SetRadio(
      "[driver]\nrange = EIO\nscan_type = EINVAL\nscan = EBUSY\nresults = ENODATA\nstatistics = EPERM\n"
      "status = ENOTTY\nname = ENETDOWN");
  char active[] = "active";
  EXPECT_EQ(Ask(SIOCGIWRANGE, nullptr, 0), EIO);
  EXPECT_EQ(Ask(0x8BEB, active, 6), EINVAL);
  EXPECT_EQ(Scan(), EBUSY);
  EXPECT_EQ(Results(), ENODATA);
  EXPECT_EQ(Ask(SIOCGIWSTATS, nullptr, 0), EPERM);
  EXPECT_EQ(Ask(0x8BF1, nullptr, 0), ENOTTY);
  EXPECT_EQ(Ask(SIOCGIWNAME, nullptr, 0), ENETDOWN);
  EXPECT_EQ(
      Calls(),
      "range: EIO\nscan_type active: EINVAL\nscan: EBUSY\nresults 4096: ENODATA 4096\nstatistics: EPERM\n"
      "status: ENOTTY\nname: ENETDOWN\n");
}

TEST_F(RadioTest, IsTheRadioAlone) {
  EXPECT_EQ(Ask(SIOCSIWSCAN, nullptr, 0, 0, "eth0"), EOPNOTSUPP);
  EXPECT_EQ(Ask(SIOCSIWSCAN, nullptr, 0, 0, "ra1"), ENODEV);
  EXPECT_EQ(Ask(SIOCSIWSCAN, nullptr, 0, 0, ""), ENODEV);
  EXPECT_EQ(Ask(SIOCGIWSENS, nullptr, 0), EOPNOTSUPP);
  EXPECT_EQ(ioctl(socket_, SIOCGIWNAME, nullptr), -1);
  EXPECT_EQ(errno, EFAULT);
  std::filesystem::remove(Hardware("link.ini"));
  EXPECT_EQ(Scan(), ENODEV);
  request = {};
  EXPECT_EQ(ioctl(-1, SIOCGIWNAME, &request), -1);
  EXPECT_EQ(errno, EBADF);
  const int plain = open("/dev/null", O_RDWR | O_CLOEXEC);
  EXPECT_EQ(ioctl(plain, SIOCGIWNAME, &request), -1);
  EXPECT_EQ(errno, ENOTTY);
  close(plain);
}

TEST_F(RadioTest, TellsAsManyCellsAsALengthCanName) {
  std::string cells;
  for (int i = 0; i < 500; ++i) cells += "[" + std::to_string(i) + "]\n";
  SetCells(cells);
  ASSERT_EQ(Scan(), 0);
  ASSERT_EQ(Results(65535), 0);
  const std::string names = Names();
  EXPECT_EQ(std::count(names.begin(), names.end(), '\n'), 500);
}

}  // namespace
