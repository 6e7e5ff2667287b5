// hw/ra0/cells.ini as a person writes it.
#include "cells.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string Hex(const uint8_t* bytes, size_t length) {
  std::string text;
  for (size_t i = 0; i < length; ++i) {
    char pair[3];
    std::snprintf(pair, sizeof pair, "%02x", bytes[i]);
    text += pair;
  }
  return text;
}

// A line for each cell.
std::string Show(std::string_view text) {
  std::string all;
  Cell cell;
  for (Cells cells(text); cells.Next(&cell);) {
    all += std::string(cell.name.Text()) + (cell.hidden ? " hidden" : "") + " mode " +
           std::to_string(cell.mode) + " level " + std::to_string(cell.level) + " quality " +
           std::to_string(cell.quality) + " channel " + std::to_string(cell.channel) + " " +
           Hex(cell.address, sizeof cell.address) + (cell.wantsKey ? " key " : " open ") +
           Hex(cell.elements, cell.elementsLength) + "\n";
  }
  return all;
}

TEST(Cells, AreTheSectionsInTheirOrder) {
  EXPECT_EQ(Show("[a]\n[b]\nname = B b\n[a]\nlevel=1"),
            "a mode 3 level 180 quality 50 channel 6 02000000c001 open \n"
            "B b mode 3 level 180 quality 50 channel 6 02000000c002 open \n"
            "a mode 3 level 1 quality 50 channel 6 02000000c003 open \n");
  EXPECT_EQ(Show(""), "");
  EXPECT_EQ(Show("level = 5\n; [a]\n#[b]\n[c"), "");
}

TEST(Cells, SayAllThatAPersonMayWrite) {
  EXPECT_EQ(
      Show("[ x ]\r\n hidden = yes\r\nmode = ad-hoc\r\nsecurity = wpa2\r\nlevel = 255\r\nquality=100\r\n"
           "channel = 36\r\naddress = 00:11:22:AA:bb:cc\r\npassword = p\r\n"),
      "x hidden mode 1 level 255 quality 100 channel 36 001122aabbcc key "
      "30140100000fac040100000fac040100000fac020000\n");
}

TEST(Cells, KeepTheDefaultForWhatMeansNothing) {
  EXPECT_EQ(Show("[x]\nhidden = maybe\nmode = odd\nsecurity = none\nlevel = -1\nquality = x\nchannel =\n"
                 "address = 00:11\nname_hex = 1\nelements = zz\nkey = ?\nnothing"),
            "x mode 3 level 180 quality 50 channel 6 02000000c001 open \n");
}

TEST(Cells, TakeNamesOfAnyBytesUpToTheLongest) {
  EXPECT_EQ(Show("[x]\nname_hex = 41 00 ff\nname = y"), std::string("A\0\xff", 3) +
                                                            " mode 3 level 180 quality 50 channel 6 "
                                                            "02000000c001 open \n");
  Cell cell;
  const std::string longName = "[" + std::string(40, 'n') + "]";
  Cells cells(longName);
  ASSERT_TRUE(cells.Next(&cell));
  EXPECT_EQ(cell.name.Text(), std::string(32, 'n'));
  const std::string longHex = "[x]\nname_hex = " + std::string(66, '4');
  Cells others(longHex);
  ASSERT_TRUE(others.Next(&cell));
  EXPECT_EQ(cell.name.Text(), "x") << "33 bytes are no name";
}

TEST(Cells, AdvertiseWhatTheirSecurityOrAPersonSays) {
  EXPECT_NE(Show("[x]\nsecurity = wep").find("key \n"), std::string::npos);
  EXPECT_NE(Show("[x]\nsecurity = mixed").find("30180100"), std::string::npos);
  EXPECT_NE(Show("[x]\nsecurity = mixed").find("dd1a0050f201"), std::string::npos);
  EXPECT_NE(Show("[x]\nelements = dd 03 00 50 f2\nsecurity = wpa2").find("key dd030050f2\n"),
            std::string::npos);
  EXPECT_NE(Show("[x]\nkey = off\nsecurity = wep").find("open \n"), std::string::npos);
  EXPECT_NE(Show("[x]\nkey = on").find("key \n"), std::string::npos);
}

TEST(Cells, HaveElementsOfTheLengthThatTheySay) {
  for (const char* security : {"wpa", "wpa2", "mixed", "enterprise", "wpa3", "wpa3-mixed"}) {
    Cell cell;
    const std::string text = std::string("[x]\nsecurity = ") + security;
    Cells cells(text);
    ASSERT_TRUE(cells.Next(&cell));
    size_t at = 0;
    while (at + 1 < cell.elementsLength) at += 2U + cell.elements[at + 1];
    EXPECT_EQ(at, cell.elementsLength) << security;
    EXPECT_GT(at, 0U) << security;
  }
}

}  // namespace
