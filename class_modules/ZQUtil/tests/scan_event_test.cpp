// One event applied to one record, and events that nobody should send.
#include <gtest/gtest.h>
#include <iwlib.h>

#include <memory>

#include "scan_fixture.h"
#include "wireless_calls.h"
#include "zq_memory.h"

namespace {

class ScanEventTest : public ScanTest {
 protected:
  ~ScanEventTest() override { zq__free(record.ESSID, "test", __LINE__); }

  // The traces of applying the event.
  std::string Apply(uint16_t command, const std::string& payload, uint16_t flags) {
    return ApplyPoint(command, const_cast<char*>(payload.data()), payload.size(), flags);
  }
  std::string ApplyPoint(uint16_t command, void* payload, size_t length, uint16_t flags) {
    iw_event event{};
    event.cmd = command;
    event.u.data.pointer = payload;
    event.u.data.length = static_cast<uint16_t>(length);
    event.u.data.flags = flags;
    Traces();
    EXPECT_EQ(ZQNetwork::get_scan_results(nullptr, &event, nullptr, 0, &record, -1), 0);
    return Traces();
  }

  _ESSIDStruct record{};
};

TEST_F(ScanEventTest, ANameReplacesTheOneBefore) {
  EXPECT_EQ(Apply(SIOCGIWESSID, "first", 1), "ZQUtil SIOCGIWESSID\n");
  EXPECT_STREQ(record.ESSID, "first");
  Apply(SIOCGIWESSID, "second", 0x0103);
  EXPECT_STREQ(record.ESSID, "second");
  Apply(SIOCGIWESSID, "third", 0);
  EXPECT_EQ(record.ESSID, nullptr) << "hidden";
  Apply(SIOCGIWESSID, "x", 1);
  Apply(SIOCGIWESSID, "", 1);
  EXPECT_EQ(record.ESSID, nullptr);
  Apply(SIOCGIWESSID, "x", 1);
  ApplyPoint(SIOCGIWESSID, nullptr, 5, 1);
  EXPECT_EQ(record.ESSID, nullptr);
}

TEST_F(ScanEventTest, ALengthBeyondANamesIsCut) {
  std::string name(65535, 'n');
  Apply(SIOCGIWESSID, name, 1);
  EXPECT_EQ(record.ESSID, std::string(32, 'n'));
}

TEST_F(ScanEventTest, AKeyThatIsOff) {
  record.encrypted = 1;
  EXPECT_EQ(Apply(SIOCGIWENCODE, "", kKeyOff), "Encryption Key: off\nDiscovered AP (NULL) Open\n");
  EXPECT_EQ(record.encrypted, 0);
  Apply(SIOCGIWESSID, "net", 1);
  EXPECT_EQ(Apply(SIOCGIWENCODE, "", kKeyOff | 3), "Encryption Key: off\nDiscovered AP net Open\n");
}

TEST_F(ScanEventTest, AKeyThatIsOn) {
  EXPECT_EQ(ApplyPoint(SIOCGIWENCODE, nullptr, 0, 0), "Discovered AP (NULL) Encrypted\nEncryption Key: on\n");
  EXPECT_EQ(record.encrypted, 1);
  Apply(SIOCGIWESSID, "net", 1);
  EXPECT_EQ(Apply(SIOCGIWENCODE, "\x01\x02\x03\xAB\xFF", 1),
            "Discovered AP net Encrypted\nEncryption Key: 0102-03AB-FF\n");
  EXPECT_EQ(Apply(SIOCGIWENCODE, "\x01\x02\x03", 0x0800 | 2),
            "Discovered AP net Encrypted\nEncryption Key: ****-**\nIndex [2]\n");
  EXPECT_EQ(Apply(SIOCGIWENCODE, "\x01", 0x4000 | 0x2000 | 4),
            "Discovered AP net Encrypted\nEncryption Key: 01\nIndex [4]\nSecurity mode: restricted\n"
            "Security mode: open\n");
  EXPECT_EQ(Apply(SIOCGIWENCODE, "\x01", 0x2000),
            "Discovered AP net Encrypted\nEncryption Key: 01\nSecurity mode: open\n");
}

TEST_F(ScanEventTest, KeysOfOddLengths) {
  EXPECT_EQ(Apply(SIOCGIWENCODE, "", 0), "Discovered AP (NULL) Encrypted\nEncryption Key: 00\n");
  EXPECT_EQ(Apply(SIOCGIWENCODE, std::string(42, '\x11'), 0).size(), 31U + 16 + 1 + 42 * 2 + 20);
  EXPECT_EQ(Apply(SIOCGIWENCODE, std::string(43, '\x11'), 0),
            "Discovered AP (NULL) Encrypted\nEncryption Key: <too big>\n");
  EXPECT_EQ(Apply(SIOCGIWENCODE, std::string(65535, '\x11'), 0),
            "Discovered AP (NULL) Encrypted\nEncryption Key: <too big>\n");
  EXPECT_EQ(ApplyPoint(SIOCGIWENCODE, nullptr, 65535, 0),
            "Discovered AP (NULL) Encrypted\nEncryption Key: on\n");
}

TEST_F(ScanEventTest, ALevelBecomesAStrength) {
  for (const int level : {0, 141, 142, 196, 255}) {
    iw_event event{};
    event.cmd = IWEVQUAL;
    event.u.qual.level = static_cast<uint8_t>(level);
    ZQNetwork::get_scan_results(nullptr, &event, nullptr, 0, &record, -1);
    EXPECT_EQ(record.strength, level - 142);
  }
}

TEST_F(ScanEventTest, ATextMayHoldAnElement) {
  const std::string rsn = "30140100000fac040100000fac040100000fac020000";
  EXPECT_EQ(Apply(IWEVCUSTOM, "rsn_ie=" + rsn, 0),
            "ZQUtil IWEVCUSTOM\nExtra: rsn_ie=" + rsn +
                "\nZQUtil this AP uses WPA or WPA2 Encryption\n"
                "GetWPAParams setting WPAVersion to 2\n"
                "ZQUtil AP Reports CCMP Group Cipher\nPairwise Ciphers (1)\n"
                "ZQUtil AP Reports CCMP Pairwise Cipher\nZQUtil AP Reports 1 Authentication Suites\n"
                "ZQUtil AP Reports PSK Authentication Suite\n");
  EXPECT_EQ(::Show(record), "(null) strength 0 WPA 2 AES\n");
  record = {};
  Apply(IWEVCUSTOM, "wpa_ie=DD160050F20101000050F20201000050F20201000050F202", 0);
  EXPECT_EQ(::Show(record), "(null) strength 0 WPA 1 TKIP\n");
}

TEST_F(ScanEventTest, ATextThatIsNoElement) {
  const std::string start = "ZQUtil IWEVCUSTOM\nExtra: ";
  const std::string marked = "\nZQUtil this AP uses WPA or WPA2 Encryption\n";
  EXPECT_EQ(Apply(IWEVCUSTOM, "", 0), start + "\n");
  EXPECT_EQ(ApplyPoint(IWEVCUSTOM, nullptr, 9, 0), start + "\n");
  EXPECT_EQ(Apply(IWEVCUSTOM, "bcn_int=100", 0), start + "bcn_int=100\n");
  EXPECT_EQ(Apply(IWEVCUSTOM, "WPA_IE=dd16", 0), start + "WPA_IE=dd16\n");
  EXPECT_EQ(Apply(IWEVCUSTOM, " wpa_ie=dd16", 0), start + " wpa_ie=dd16\n");
  EXPECT_EQ(Apply(IWEVCUSTOM, "wpa_ie", 0), start + "wpa_ie\n");
  EXPECT_EQ(Apply(IWEVCUSTOM, "wpa_ie=", 0), start + "wpa_ie=" + marked);
  EXPECT_EQ(Apply(IWEVCUSTOM, "rsn_ie=zz", 0), start + "rsn_ie=zz" + marked);
  EXPECT_EQ(Apply(IWEVCUSTOM,
                  std::string("rsn_ie=30\0"
                              "14",
                              12),
                  0),
            start + "rsn_ie=30" + marked);
  EXPECT_EQ(::Show(record), "(null) strength 0\n");
}

TEST_F(ScanEventTest, ALastDigitAloneIsAByte) {
  // The group selector's type is the digit 2.
  Apply(IWEVCUSTOM, "rsn_ie=3006 01", 0);
  EXPECT_EQ(record.WPAVersion, 0) << "a blank ends the digits";
  Apply(IWEVCUSTOM, "rsn_ie=30060100000fac2", 0);
  EXPECT_EQ(::Show(record), "(null) strength 0 WPA 2 TKIP\n");
  record = {};
  record.AES = 1;
  EXPECT_NE(Apply(IWEVCUSTOM, "rsn_ie=30020100000fac4", 0).find("CCMP Group Cipher BUT overriding AES"),
            std::string::npos);
}

TEST_F(ScanEventTest, ATextBeyondATextsLengthIsCut) {
  const std::string text = "wpa_ie=" + std::string(65000, 'd');
  EXPECT_EQ(Apply(IWEVCUSTOM, text, 0).substr(0, 288),
            "ZQUtil IWEVCUSTOM\nExtra: " + text.substr(0, 256) + "\nZQUtil");
}

TEST_F(ScanEventTest, ElementsWithoutDataChangeNothing) {
  EXPECT_EQ(ApplyPoint(IWEVGENIE, nullptr, 24, 0), "After GetWPAParams, WPAVersion is 0\n");
  record.WPAVersion = 1;
  EXPECT_EQ(Apply(IWEVGENIE, "", 0), "After GetWPAParams, WPAVersion is 1\n");
}

TEST_F(ScanEventTest, OtherCommandsAreNamed) {
  EXPECT_EQ(Apply(SIOCGIWFREQ, "", 0), "ZQUtil SIOCGIWFREQ\n");
  EXPECT_EQ(Apply(SIOCGIWMODE, "", 0), "ZQUtil SIOCGIWMODE\n");
  EXPECT_EQ(Apply(SIOCGIWAP, "", 0), "ZQUtil SIOCGIWAP\n");
  EXPECT_EQ(Apply(SIOCGIWRATE, "", 0), "ZQUtil SIOCGIWRATE\n");
  EXPECT_EQ(Apply(0, "", 0), "Unknown command 0\n");
  EXPECT_EQ(Apply(0xFFFF, "", 0), "Unknown command 65535\n");
}

// An event by its own words: length, command, and what follows.
std::string Raw(uint16_t length, uint16_t command, const std::string& rest) {
  std::string bytes(4, '\0');
  memcpy(&bytes[0], &length, 2);
  memcpy(&bytes[2], &command, 2);
  return bytes + rest;
}

TEST_F(ScanTest, AnEventThatReachesBeyondTheResultsCarriesNothing) {
  const std::string good = Air({22, false}).Name("good").Bytes();
  SetResults(good + Raw(8 + 5, SIOCGIWESSID, FromHex("05000100") + "cut"));
  EXPECT_EQ(Scan(), "good strength 0\n");
  SetResults(good + Raw(60000, SIOCGIWESSID, FromHex("20000100") + "cut"));
  EXPECT_EQ(Scan(), "good strength 0\n");
  SetResults(good + Raw(8 + 24, IWEVGENIE, FromHex("18000000") + FromHex("3014")));
  EXPECT_EQ(Scan(), "good strength 0\n");
}

TEST_F(ScanTest, AnEventShorterThanItsHeadIsNoName) {
  for (const int length : {5, 6, 7}) {
    SetResults(Raw(static_cast<uint16_t>(length), SIOCGIWESSID, FromHex("04000100") + "steal this"));
    EXPECT_EQ(Scan(), "") << length;
  }
}

TEST_F(ScanTest, ANameThatClaimsMoreThanItsEventCarriesNothing) {
  SetResults(Raw(8 + 2, SIOCGIWESSID, FromHex("20000100") + "ab") + std::string(100, 'x'));
  EXPECT_EQ(Scan(), "");
  SetResults(Raw(8 + 40, SIOCGIWESSID, FromHex("28000100") + std::string(40, 'y')));
  EXPECT_EQ(Scan(), "") << "no name has 40 bytes";
}

TEST_F(ScanTest, AnEventWithoutALengthEndsTheReading) {
  const std::string good = Air({22, false}).Name("good").Bytes();
  for (const int length : {0, 1, 4}) {
    SetResults(good + Raw(static_cast<uint16_t>(length), SIOCGIWAP, "") +
               Air({22, false}).Name("lost").Bytes());
    EXPECT_EQ(Scan(), "good strength 0\n") << length;
  }
}

TEST_F(ScanTest, AnOldEventWhoseLengthsContradictStaysInItsRoom) {
  SetRadio("version = 16");
  // The length behind the pointer says 0, the one in the pointer's place fits as on another machine.
  SetResults(Raw(4 + 12 + 12, SIOCGIWESSID,
                 FromHex("0000000000000000") + FromHex("00000100") + FromHex("04000000") + "abcdefghijkl"));
  EXPECT_EQ(Scan().size() < 40, true);
  SetRadio("version = 16\nlayout = 32");
  SetCells("[a]\n[b]\nsecurity = mixed");
  SetResults(std::nullopt);
  Scan();
}

class Truncated : public ScanTest, public testing::WithParamInterface<std::pair<int, const char*>> {};

// Every cut gives a beginning of the whole list, whose last network may lack what was cut off.
TEST_P(Truncated, ScansGiveTheNetworksThatAreWhole) {
  StreamForm form{static_cast<uint8_t>(GetParam().first), std::string(GetParam().second) == "64"};
  SetRadio("version = " + std::to_string(GetParam().first));
  Air air(form);
  const std::vector<std::string> names = {"first", "second", "the third one"};
  const std::string wpa2 = FromHex("30140100000fac040100000fac040100000fac020000");
  for (const std::string& name : names) {
    air.Address().Name(name).Frequency().Mode(kMaster).Key(kKeyOn).Level(200).Rate().Elements(wpa2);
    air.Text("rsn_ie=30140100000fac040100000fac040100000fac020000");
  }
  const std::string whole = air.Bytes();
  size_t listed = 0;
  for (size_t length = 0; length <= whole.size(); ++length) {
    SetResults(whole.substr(0, length));
    Scan();
    const zq_List& list = *network.essidList;
    EXPECT_GE(list.Count(), listed) << "at " << length;
    listed = list.Count();
    size_t index = 0;
    for (auto* at = list.First(); at != nullptr; at = list.Next(at), ++index) {
      const auto& record = *static_cast<_ESSIDStruct*>(list.Record(at));
      ASSERT_EQ(record.ESSID, names[index]) << "at " << length;
      if (index + 1 < list.Count()) {
        EXPECT_EQ(::Show(record), names[index] + " strength 58 encrypted WPA 2 AES\n");
      }
    }
  }
  EXPECT_EQ(listed, 3U);
}

INSTANTIATE_TEST_SUITE_P(Layouts, Truncated,
                         testing::Values(std::pair(22, "64"), std::pair(22, "32"),
                                         std::pair(18, sizeof(void*) == 8 ? "64" : "32")));

}  // namespace
