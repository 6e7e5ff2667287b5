// From the driver's events to the list of networks.
#include <gtest/gtest.h>

#include "scan_fixture.h"
#include "wireless_calls.h"

namespace {

const std::string kWpa2 = FromHex("30140100000fac040100000fac040100000fac020000");
const std::string kWpa = FromHex("dd160050f20101000050f20201000050f20201000050f202");
const std::string kWmm = FromHex("dd180050f2020101800003a4000027a4000042435e0062322f00");

TEST_F(ScanTest, EachNetworkIsARecordInTheOrderOfTheScan) {
  Air air;
  air.Address().Name("open").Frequency().Mode(kMaster).Key(kKeyOff).Level(142);
  air.Address().Name("old").Frequency().Mode(kMaster).Key(kKeyOn).Level(196);
  air.Address().Name("new").Frequency().Mode(kMaster).Key(kKeyOn).Level(255).Elements(kWpa2).Elements(kWmm);
  air.Address().Name("both").Mode(kMaster).Key(kKeyOn).Level(0).Elements(kWpa2).Elements(kWpa);
  EXPECT_EQ(ScanOf(air),
            "open strength 0\n"
            "old strength 54 encrypted\n"
            "new strength 113 encrypted WPA 2 AES\n"
            "both strength -142 encrypted WPA 2 TKIP AES\n");
}

TEST_F(ScanTest, EveryEventLeavesItsTraces) {
  Air air;
  air.Address().Name("one").Frequency().Rate().Mode(kMaster).Key(kKeyOff).Level(200);
  air.Address().Name("two").Key(kKeyOn | 2, "").Elements(kWmm).Text("bcn_int=100").Other(0x8B25);
  ScanOf(air);
  EXPECT_EQ(EventTraces(),
            "ZQUtil SIOCGIWAP\n"
            "ZQUtil SIOCGIWESSID\n"
            "This is a Valid SSID\n"
            "ZQUtil SIOCGIWFREQ\n"
            "ZQUtil SIOCGIWRATE\n"
            "ZQUtil SIOCGIWRATE\n"
            "ZQUtil SIOCGIWMODE\n"
            "Encryption Key: off\n"
            "Discovered AP one Open\n"
            "ZQUtil IWEVQUAL\n"
            "ZQUtil SIOCGIWAP\n"
            "=====\n"
            "ZQUtil GetESSIDList Adding one, encrypted 0, strength 58 WPA 0 TKIP 0 AES 0\n"
            "ZQUtil SIOCGIWESSID\n"
            "This is a Valid SSID\n"
            "Discovered AP two Encrypted\n"
            "Encryption Key: on\n"
            "Index [2]\n"
            "GetWPAParams returning because this is not a WPA encrypted device]\n"
            "After GetWPAParams, WPAVersion is 0\n"
            "ZQUtil IWEVCUSTOM\n"
            "Extra: bcn_int=100\n" +
                // A 32-bit program's library passes over an event that is nothing but its head.
                std::string(sizeof(void*) == 8 ? "Unknown command 35621\n" : "") +
                "=====\n"
                "ZQUtil GetESSIDList Adding two, encrypted 1, strength 0 WPA 0 TKIP 0 AES 0\n");
}

TEST_F(ScanTest, OfTwoCellsWithOneNameTheFirstStays) {
  Air air;
  air.Name("net").Level(150).Key(kKeyOff).Name("net").Level(250).Key(kKeyOn).Elements(kWpa2).Name("other");
  EXPECT_EQ(ScanOf(air), "net strength 8\nother strength 0\n");
  EXPECT_NE(
      EventTraces().find("=====\n"
                         "ZQUtil GetESSIDList Not Adding (duplicate) net, encrypted 1, strength 108 WPA 2 "
                         "TKIP 0 AES 1\n"),
      std::string::npos);
  Air last;
  last.Name("net").Level(150).Name("Net").Level(151).Name("net").Level(250);
  EXPECT_EQ(ScanOf(last), "net strength 8\nNet strength 9\n");
  EXPECT_EQ(EventTraces(),
            "ZQUtil SIOCGIWESSID\nThis is a Valid SSID\nZQUtil IWEVQUAL\n"
            "=====\nZQUtil GetESSIDList Adding net, encrypted 0, strength 8 WPA 0 TKIP 0 AES 0\n"
            "ZQUtil SIOCGIWESSID\nThis is a Valid SSID\nZQUtil IWEVQUAL\n"
            "=====\nZQUtil GetESSIDList Adding Net, encrypted 0, strength 9 WPA 0 TKIP 0 AES 0\n"
            "ZQUtil SIOCGIWESSID\nThis is a Valid SSID\nZQUtil IWEVQUAL\n");
}

TEST_F(ScanTest, AHiddenCellIsNotListed) {
  Air air;
  air.Name("seen", 0).Level(200).Name("", 1).Level(201).Name("x").Level(202).Name("").Level(203);
  EXPECT_EQ(ScanOf(air), "x strength 60\n");
  EXPECT_EQ(EventTraces(),
            "ZQUtil SIOCGIWESSID\nInvalid - Bad SSID\nZQUtil IWEVQUAL\n"
            "ZQUtil SIOCGIWESSID\nInvalid - Bad SSID\nZQUtil IWEVQUAL\n"
            "ZQUtil SIOCGIWESSID\nThis is a Valid SSID\nZQUtil IWEVQUAL\n"
            "=====\nZQUtil GetESSIDList Adding x, encrypted 0, strength 60 WPA 0 TKIP 0 AES 0\n"
            "ZQUtil SIOCGIWESSID\nInvalid - Bad SSID\nZQUtil IWEVQUAL\n");
}

TEST_F(ScanTest, AnAdHocCellIsNotListed) {
  Air air;
  air.Name("friend").Mode(kAdHoc).Level(200).Name("net").Mode(kMaster).Level(150).Name("other").Mode(kAdHoc);
  EXPECT_EQ(ScanOf(air), "net strength 8\n");
  EXPECT_EQ(
      EventTraces(),
      "ZQUtil SIOCGIWESSID\nThis is a Valid SSID\nZQUtil SIOCGIWMODE\nInvalid - AdHoc SSID\nZQUtil IWEVQUAL\n"
      "ZQUtil SIOCGIWESSID\nThis is a Valid SSID\nZQUtil SIOCGIWMODE\nZQUtil IWEVQUAL\n"
      "=====\nZQUtil GetESSIDList Adding net, encrypted 0, strength 8 WPA 0 TKIP 0 AES 0\n"
      "ZQUtil SIOCGIWESSID\nThis is a Valid SSID\nZQUtil SIOCGIWMODE\nInvalid - AdHoc SSID\n");
}

TEST_F(ScanTest, WhatAnUnlistedCellSaidGoesOverToTheNext) {
  Air air;
  air.Name("", 0).Level(200).Key(kKeyOn).Elements(kWpa2).Name("next");
  EXPECT_EQ(ScanOf(air), "next strength 58 encrypted WPA 2 AES\n");
  // A listed one leaves nothing behind, nor does a second of one name, nor an empty name.
  Air listed;
  listed.Name("a").Level(200).Key(kKeyOn).Elements(kWpa2).Name("a").Level(201).Key(kKeyOn).Elements(kWpa);
  listed.Name("b").Name(std::string("\0", 1)).Level(7).Elements(kWpa2).Name("c");
  EXPECT_EQ(ScanOf(listed), "a strength 58 encrypted WPA 2 AES\nb strength 0\nc strength 0\n");
}

TEST_F(ScanTest, AnEmptyNameIsDitched) {
  Air air;
  air.Name(std::string("\0", 1)).Level(200).Name("a").Name(std::string("\0hidden", 7));
  EXPECT_EQ(ScanOf(air), "a strength 0\n");
  EXPECT_EQ(EventTraces(),
            "ZQUtil SIOCGIWESSID\nThis is a Valid SSID\nZQUtil IWEVQUAL\nDitching zero length ESSID\n"
            "ZQUtil SIOCGIWESSID\nThis is a Valid SSID\n"
            "=====\nZQUtil GetESSIDList Adding a, encrypted 0, strength 0 WPA 0 TKIP 0 AES 0\n"
            "ZQUtil SIOCGIWESSID\nThis is a Valid SSID\nDitching zero length ESSID\n");
}

TEST_F(ScanTest, NamesAreTheirBytes) {
  const std::string longest(32, 'n');
  const std::string notUtf8 = "caf\xe9\xff";
  const std::string control = "a\tb\x01\x7f";
  Air air;
  air.Name(longest)
      .Name(notUtf8)
      .Name(control)
      .Name("with\0end" + std::string("\0", 1))
      .Name(" ")
      .Name("%s%n");
  EXPECT_EQ(ScanOf(air), longest + " strength 0\n" + notUtf8 + " strength 0\n" + control +
                             " strength 0\nwith strength 0\n  strength 0\n%s%n strength 0\n");
  // With the terminator that old drivers count, and without.
  Air old;
  old.Name(longest + std::string("\0", 1)).Name(std::string(33, 'm'));
  EXPECT_EQ(ScanOf(old), longest + " strength 0\n" + std::string(32, 'm') + " strength 0\n");
}

TEST_F(ScanTest, TheWantedNetworkEndsTheReading) {
  Air air;
  air.Name("a").Level(150).Name("b").Level(160).Name("c").Level(170);
  EXPECT_EQ(ScanOf(air, "b"), "a strength 8\nb strength 18\n");
  EXPECT_EQ(EventTraces(),
            "ZQUtil SIOCGIWESSID\nThis is a Valid SSID\nZQUtil IWEVQUAL\n"
            "ZQUtil ignoring this essid a looking for b\n"
            "=====\nZQUtil GetESSIDList Adding a, encrypted 0, strength 8 WPA 0 TKIP 0 AES 0\n"
            "ZQUtil SIOCGIWESSID\nThis is a Valid SSID\nZQUtil IWEVQUAL\n"
            "ZQUtil accepting this essid b looking for b\n"
            "=====\nZQUtil GetESSIDList Adding b, encrypted 0, strength 18 WPA 0 TKIP 0 AES 0\n"
            "ZQUtil only cares about this ESSID so leaving now\n");
}

TEST_F(ScanTest, TheWantedNetworkMayBeTheLastOrMissing) {
  Air air;
  air.Name("a").Name("b").Name("c");
  EXPECT_EQ(ScanOf(air, "c"), "a strength 0\nb strength 0\nc strength 0\n");
  EXPECT_EQ(EventTraces().find("leaving now"), std::string::npos);
  EXPECT_EQ(ScanOf(air, "C"), "a strength 0\nb strength 0\nc strength 0\n");
  EXPECT_EQ(EventTraces().find("accepting"), std::string::npos);
  // Found, although it cannot be listed.
  Air adHoc;
  adHoc.Name("a").Mode(kAdHoc).Name("b");
  EXPECT_EQ(ScanOf(adHoc, "a"), "");
  EXPECT_NE(EventTraces().find("ZQUtil accepting this essid a looking for a\n"
                               "ZQUtil only cares about this ESSID so leaving now\n"),
            std::string::npos);
}

TEST_F(ScanTest, OfElementsInOneEventTheFirstCounts) {
  Air air;
  air.Name("a").Elements(kWpa + kWpa2).Name("b").Elements(kWmm + kWpa2).Name("c").Elements("");
  EXPECT_EQ(ScanOf(air), "a strength 0 WPA 1 TKIP\nb strength 0\nc strength 0\n");
}

TEST_F(ScanTest, ElementsMayComeAsTexts) {
  SetRadio("elements = texts");
  SetCells("[a]\nsecurity = mixed\nlevel = 142\n[b]\nsecurity = wpa3\nlevel = 142");
  EXPECT_EQ(Scan(), "a strength 0 encrypted WPA 2 TKIP AES\nb strength 0 encrypted WPA 2 AES\n");
}

TEST_F(ScanTest, ListsNoneOneAndManyInEveryLayout) {
  for (const StreamForm form : {StreamForm{22, true}, StreamForm{22, false}}) {
    for (const int count : {0, 1, 64, 500}) {
      std::string cells;
      std::string expected;
      for (int i = 0; i < count; ++i) {
        cells += "[net " + std::to_string(i) + "]\nlevel = 143\n";
        expected += "net " + std::to_string(i) + " strength 1\n";
      }
      SetCells(cells);
      SetRadio(form.wide ? "layout = 64" : "layout = 32");
      TakeWirelessCalls();
      EXPECT_EQ(Scan(), expected);
    }
  }
  EXPECT_NE(TakeWirelessCalls().find("wait 250000\nresults ra0 4096 0\nresults "), std::string::npos)
      << "it grew";
}

TEST_F(ScanTest, TheListIsEmptiedBeforeEachScan) {
  SetCells("[a]\n[b]");
  Scan();
  SetCells("[c]");
  EXPECT_EQ(Scan(), "c strength 38\n");
  network.EmptyESSIDList();
  EXPECT_EQ(Show(), "");
  EXPECT_EQ(network.essidList->Count(), 0U);
}

}  // namespace
