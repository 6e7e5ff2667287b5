// What a network's WPA or RSN element says, as networks in the air send them and as nobody should.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>

#include "ZQNetwork.h"
#include "trace_capture.h"

namespace {

std::string Bytes(const std::string& hex) {
  std::string bytes;
  std::string digits;
  for (const char c : hex) {
    if (c == ' ') continue;
    digits += c;
    if (digits.size() < 2) continue;
    bytes += static_cast<char>(std::stoi(digits, nullptr, 16));
    digits.clear();
  }
  return bytes;
}

class WpaElementTest : public testing::Test {
 protected:
  // The traces of reading the element, each with its line break, and then "WPA n TKIP n AES n".
  std::string Read(const std::string& hex) { return ReadBytes(Bytes(hex)); }
  // The bytes lie in memory that ends with them.
  std::string ReadBytes(const std::string& bytes) {
    const std::unique_ptr<unsigned char[]> copy(new unsigned char[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), copy.get());
    const size_t before = trace.Texts().size();
    ZQNetwork::GetWPAParams(&record, copy.get(), static_cast<int32_t>(bytes.size()));
    std::string all;
    const auto texts = trace.Texts();
    for (size_t i = before; i < texts.size(); ++i) all += texts[i] + "\n";
    return all + "WPA " + std::to_string(record.WPAVersion) + " TKIP " + std::to_string(record.TKIP) +
           " AES " + std::to_string(record.AES);
  }
  // The last line of that alone, of a new record.
  std::string Outcome(const std::string& hex) {
    record = {};
    const std::string all = Read(hex);
    return all.substr(all.rfind('\n') + 1);
  }

  TraceCapture trace;
  _ESSIDStruct record{};
};

constexpr char kRsn[] = "GetWPAParams setting WPAVersion to 2\n";
constexpr char kFirstWpa[] =
    "GetWPAParams checking to set WPAVersion to 1 (now 0)\nGetWPAParams setting WPAVersion to 1\n";
constexpr char kOther[] = "GetWPAParams returning because this is not a WPA encrypted device]\n";

TEST_F(WpaElementTest, RsnWithCcmpAndPskIsWpa2WithAes) {
  EXPECT_EQ(Read("3014 0100 000fac04 0100 000fac04 0100 000fac02 0000"),
            std::string(kRsn) +
                "ZQUtil AP Reports CCMP Group Cipher\n"
                "Pairwise Ciphers (1)\n"
                "ZQUtil AP Reports CCMP Pairwise Cipher\n"
                "ZQUtil AP Reports 1 Authentication Suites\n"
                "ZQUtil AP Reports PSK Authentication Suite\n"
                "WPA 2 TKIP 0 AES 1");
}

TEST_F(WpaElementTest, WpaWithTkipIsWpaWithTkip) {
  EXPECT_EQ(Read("dd16 0050f201 0100 0050f202 0100 0050f202 0100 0050f202"),
            std::string(kFirstWpa) +
                "ZQUtil AP Reports TKIP Group Cipher\n"
                "Pairwise Ciphers (1)\n"
                "ZQUtil AP Reports TKIP Pairwise Cipher\n"
                "ZQUtil AP Reports 1 Authentication Suites\n"
                "ZQUtil AP Reports PSK Authentication Suite\n"
                "WPA 1 TKIP 1 AES 0");
}

TEST_F(WpaElementTest, AWpa2FindingStaysAfterAWpaElement) {
  record.WPAVersion = 2;
  EXPECT_EQ(Read("dd16 0050f201 0100 0050f202 0100 0050f202 0100 0050f201"),
            "GetWPAParams checking to set WPAVersion to 1 (now 2)\n"
            "ZQUtil AP Reports TKIP Group Cipher\n"
            "Pairwise Ciphers (1)\n"
            "ZQUtil AP Reports TKIP Pairwise Cipher\n"
            "ZQUtil AP Reports 1 Authentication Suites\n"
            "ZQUtil AP Reports 802.1x Authentication Suite\n"
            "WPA 2 TKIP 1 AES 0");
  record = {};
  record.WPAVersion = 1;
  EXPECT_EQ(Read("dd0c 0050f201 0100 0050f204 0000").substr(0, 91),
            "GetWPAParams checking to set WPAVersion to 1 (now 1)\nGetWPAParams setting WPAVersion to 1\nZ");
}

TEST_F(WpaElementTest, AnRsnElementRaisesAWpaFinding) {
  record.WPAVersion = 1;
  record.TKIP = 1;
  EXPECT_EQ(Read("3014 0100 000fac04 0100 000fac04 0100 000fac02 0000").substr(0, 37), kRsn);
  EXPECT_EQ(record.WPAVersion, 2);
  EXPECT_EQ(record.TKIP, 1);
  EXPECT_EQ(record.AES, 1);
}

TEST_F(WpaElementTest, EightBytesOfWpaMeanTkip) {
  record.AES = 1;
  EXPECT_EQ(Read("dd06 0050f201 0100"), std::string(kFirstWpa) +
                                            "ZQUtil AP Reports short IE, so TKIP/TKIP\n"
                                            "ZQUtil AP Reports No Group Cipher\n"
                                            "ZQUtil AP Reports no pairwise cipher, so TKIP\n"
                                            "Pairwise Ciphers (0)\n"
                                            "WPA 1 TKIP 1 AES 1");
}

TEST_F(WpaElementTest, ACcmpSelectorBehindAShortElementClearsAes) {
  record.AES = 1;
  EXPECT_EQ(Read("dd06 0050f201 0100 0050f204"),
            std::string(kFirstWpa) +
                "ZQUtil AP Reports short IE, so TKIP/TKIP\n"
                "ZQUtil AP Reports CCMP Group Cipher BUT overriding AES\n"
                "ZQUtil AP Reports no pairwise cipher, so TKIP\n"
                "Pairwise Ciphers (0)\n"
                "WPA 1 TKIP 1 AES 0");
  record = {};
  record.AES = 1;
  EXPECT_EQ(Read("3002 0100 000fac04 0500"), std::string(kRsn) +
                                                 "ZQUtil AP Reports short IE, so TKIP/TKIP\n"
                                                 "ZQUtil AP Reports CCMP Group Cipher BUT overriding AES\n"
                                                 "ZQUtil AP Reports no pairwise cipher, so TKIP\n"
                                                 "Pairwise Ciphers (5)\n"
                                                 "WPA 2 TKIP 1 AES 0");
}

TEST_F(WpaElementTest, AGroupCipherAloneLeavesThePairwiseOneToTkip) {
  EXPECT_EQ(Read("3006 0100 000fac04"), std::string(kRsn) +
                                            "ZQUtil AP Reports CCMP Group Cipher\n"
                                            "ZQUtil AP Reports no pairwise cipher, so TKIP\n"
                                            "Pairwise Ciphers (0)\n"
                                            "WPA 2 TKIP 1 AES 1");
}

TEST_F(WpaElementTest, OtherVendorsElementsChangeNothing) {
  for (const char* other : {
           "dd18 0050f202 0101 80 00 03a40000 27a40000 42435e00 62322f00",  // WMM
           "dd0e 0050f204 104a 0001 10 1044 0001 02",                       // WPS
           "dd09 0010180200f0050000",                                       // a chip's maker
           "dd16 506f9a01 0100 0050f202 0100 0050f202 0100 0050f202",       // another OUI
           "dd05 0050f201 01",                                              // too short for a version
           "dd00", "dd",                                                    //
       }) {
    record = {};
    EXPECT_EQ(Read(other), std::string(kOther) + "WPA 0 TKIP 0 AES 0") << other;
  }
}

TEST_F(WpaElementTest, OtherElementsAreSilent) {
  for (const char* other : {"", "00 04 61626364", "01 08 82848b962430486c", "2d 1a ef01", "30", "3000",
                            "3001 01", "30ff 01", "ff 00"}) {
    EXPECT_EQ(Read(other), "WPA 0 TKIP 0 AES 0") << other;
  }
  ZQNetwork::GetWPAParams(&record, nullptr, 0);
  const unsigned char byte = 48;
  ZQNetwork::GetWPAParams(&record, &byte, -1);
  EXPECT_EQ(record.WPAVersion, 0);
}

TEST_F(WpaElementTest, EachGroupCipherHasItsTrace) {
  const char* const names[] = {"No", "WEP40", "TKIP", "WRAP", "CCMP", "WEP-104", nullptr, nullptr};
  for (int type = 0; type < 8; ++type) {
    const bool tkip = type == 2;
    const bool aes = type == 4;
    const std::string group =
        names[type] != nullptr ? "ZQUtil AP Reports " + std::string(names[type]) + " Group Cipher\n" : "";
    const std::string end = std::string("Pairwise Ciphers (0)\nWPA ") + "%" + (tkip ? " TKIP 1" : " TKIP 0") +
                            (aes ? " AES 1" : " AES 0");
    const auto Version = [&end](char version) {
      return std::string(end).replace(end.find('%'), 1, 1, version);
    };
    record = {};
    EXPECT_EQ(Read("3008 0100 000fac0" + std::to_string(type) + " 0000"), kRsn + group + Version('2'));
    record = {};
    EXPECT_EQ(Read("dd0c 0050f201 0100 0050f20" + std::to_string(type) + " 0000"),
              kFirstWpa + group + Version('1'));
  }
  record = {};
  EXPECT_EQ(Read("3008 0100 0050f204 0000"), std::string(kRsn) +
                                                 "ZQUtil AP Reports Proprietary Group Cipher\n"
                                                 "Pairwise Ciphers (0)\nWPA 2 TKIP 0 AES 0");
  record = {};
  EXPECT_EQ(Read("dd0c 0050f201 0100 000fac04 0000"), std::string(kFirstWpa) +
                                                          "ZQUtil AP Reports Proprietary Group Cipher\n"
                                                          "Pairwise Ciphers (0)\nWPA 1 TKIP 0 AES 0");
}

TEST_F(WpaElementTest, EachPairwiseCipherHasItsTrace) {
  EXPECT_EQ(
      Read("3028 0100 000fac07 0800 000fac00 000fac01 000fac02 000fac03 000fac04 000fac05 000fac06 0050f204"),
      std::string(kRsn) +
          "Pairwise Ciphers (8)\n"
          "ZQUtil AP Reports No Pairwise Cipher\n"
          "ZQUtil AP Reports WEP40 Pairwise Cipher\n"
          "ZQUtil AP Reports TKIP Pairwise Cipher\n"
          "ZQUtil AP Reports WRAP Pairwise Cipher\n"
          "ZQUtil AP Reports CCMP Pairwise Cipher\n"
          "ZQUtil AP Reports WEP-104 Pairwise Cipher\n"
          "ZQUtil AP Reports Proprietary Pairwise Cipher\n"
          "WPA 2 TKIP 1 AES 1");
}

TEST_F(WpaElementTest, EachAuthenticationSuiteHasItsTraceAndPreauthenticationToo) {
  EXPECT_EQ(Read("3020 0100 000fac05 0000 0500 000fac00 000fac01 000fac02 000fac03 0050f201 0100"),
            std::string(kRsn) +
                "ZQUtil AP Reports WEP-104 Group Cipher\n"
                "Pairwise Ciphers (0)\n"
                "ZQUtil AP Reports 5 Authentication Suites\n"
                "ZQUtil AP Reports No Authentication Suite\n"
                "ZQUtil AP Reports 802.1x Authentication Suite\n"
                "ZQUtil AP Reports PSK Authentication Suite\n"
                "ZQUtil AP Reports Proprietary Authentication Suite\n"
                "ZQUtil AP Reports Preauthentication Supported\n"
                "WPA 2 TKIP 0 AES 0");
  record = {};
  EXPECT_EQ(Read("dd0f 0050f201 0100 0050f205 0000 0000 03"),
            std::string(kFirstWpa) +
                "ZQUtil AP Reports WEP-104 Group Cipher\n"
                "Pairwise Ciphers (0)\n"
                "ZQUtil AP Reports 0 Authentication Suites\n"
                "ZQUtil AP Reports Preauthentication Supported\n"
                "WPA 1 TKIP 0 AES 0");
  record = {};
  EXPECT_EQ(Read("300b 0100 000fac05 0000 0000 02").find("Preauthentication"), std::string::npos);
}

TEST_F(WpaElementTest, CountsThatLieEndTheReading) {
  EXPECT_EQ(
      Read("3010 0100 000fac04 0300 000fac02 000fac02"),
      std::string(kRsn) + "ZQUtil AP Reports CCMP Group Cipher\nPairwise Ciphers (3)\nWPA 2 TKIP 0 AES 1");
  record = {};
  EXPECT_EQ(Read("300c 0100 000fac04 ffff 000fac02"),
            std::string(kRsn) +
                "ZQUtil AP Reports CCMP Group Cipher\nPairwise Ciphers (65535)\nWPA 2 TKIP 0 AES 1");
  record = {};
  EXPECT_EQ(Read("3012 0100 000fac04 0100 000fac04 0200 000fac02"),
            std::string(kRsn) +
                "ZQUtil AP Reports CCMP Group Cipher\nPairwise Ciphers (1)\n"
                "ZQUtil AP Reports CCMP Pairwise Cipher\nZQUtil AP Reports 2 Authentication Suites\n"
                "WPA 2 TKIP 0 AES 1");
  record = {};
  EXPECT_EQ(Read("300e 0100 000fac04 0000 ffff 000fac02"),
            std::string(kRsn) +
                "ZQUtil AP Reports CCMP Group Cipher\nPairwise Ciphers (0)\n"
                "ZQUtil AP Reports 65535 Authentication Suites\nWPA 2 TKIP 0 AES 1");
}

TEST_F(WpaElementTest, TheShorterOfElementAndBufferCounts) {
  const std::string whole = "3014 0100 000fac04 0100 000fac04 0100 000fac02 0000";
  // The element ends before its pairwise ciphers, what follows is another's.
  EXPECT_EQ(Read("3008" + whole.substr(4)), std::string(kRsn) +
                                                "ZQUtil AP Reports CCMP Group Cipher\n"
                                                "Pairwise Ciphers (1)\n"
                                                "WPA 2 TKIP 0 AES 1");
  record = {};
  EXPECT_EQ(Read("30ff" + whole.substr(4)), [&] {
    record = {};
    return Read(whole);
  }());
}

// The outcome of each length that a whole element may be cut to.
std::string Cuts(const std::string& hex, const std::function<std::string(const std::string&)>& read) {
  const std::string bytes = Bytes(hex);
  std::string all;
  for (size_t length = 0; length <= bytes.size(); ++length) all += read(bytes.substr(0, length)) + "\n";
  return all;
}

TEST_F(WpaElementTest, IsReadAsFarAsItIsThereWhereverItIsCut) {
  const auto read = [this](const std::string& bytes) {
    record = {};
    const std::string all = ReadBytes(bytes);
    return all.substr(all.rfind('\n') + 1);
  };
  std::string expected;
  for (int length = 0; length <= 22; ++length) {
    if (length < 4)
      expected += "WPA 0 TKIP 0 AES 0\n";
    else if (length < 8)
      expected += "WPA 2 TKIP 1 AES 0\n";
    else if (length < 10)
      expected += "WPA 2 TKIP 1 AES 1\n";
    else
      expected += "WPA 2 TKIP 0 AES 1\n";
  }
  EXPECT_EQ(Cuts("3014 0100 000fac04 0100 000fac04 0100 000fac02 0000", read), expected);
  expected.clear();
  for (int length = 0; length <= 24; ++length) {
    expected += length < 8 ? "WPA 0 TKIP 0 AES 0\n" : "WPA 1 TKIP 1 AES 0\n";
  }
  EXPECT_EQ(Cuts("dd16 0050f201 0100 0050f202 0100 0050f202 0100 0050f202", read), expected);
}

TEST_F(WpaElementTest, ReadsTheElementsThatAreInTheAir) {
  // WPA2 of a home router, mixed with TKIP for old devices.
  EXPECT_EQ(Outcome("3018 0100 000fac02 0200 000fac04 000fac02 0100 000fac02 0000"), "WPA 2 TKIP 1 AES 1");
  EXPECT_EQ(Outcome("dd1a 0050f201 0100 0050f202 0200 0050f204 0050f202 0100 0050f202"),
            "WPA 1 TKIP 1 AES 1");
  // WPA with CCMP only, and with a capabilities field.
  EXPECT_EQ(Outcome("dd18 0050f201 0100 0050f204 0100 0050f204 0100 0050f202 0000"), "WPA 1 TKIP 0 AES 1");
  // WPA3: SAE, protected management frames with their cipher.
  EXPECT_EQ(Outcome("301a 0100 000fac04 0100 000fac04 0100 000fac08 c000 0000 000fac06"),
            "WPA 2 TKIP 0 AES 1");
  EXPECT_EQ(Outcome("3018 0100 000fac04 0100 000fac04 0200 000fac02 000fac08 8000"), "WPA 2 TKIP 0 AES 1");
  // Fast transition with PSK and with 802.1X.
  EXPECT_EQ(Outcome("3018 0100 000fac04 0100 000fac04 0200 000fac02 000fac04 0c00"), "WPA 2 TKIP 0 AES 1");
  EXPECT_EQ(Outcome("3018 0100 000fac04 0100 000fac04 0200 000fac01 000fac03 2800"), "WPA 2 TKIP 0 AES 1");
  // Enterprise, and its 192-bit form with GCMP-256, which is neither TKIP nor CCMP.
  EXPECT_EQ(Outcome("3014 0100 000fac04 0100 000fac04 0100 000fac01 0100"), "WPA 2 TKIP 0 AES 1");
  EXPECT_EQ(Outcome("301a 0100 000fac09 0100 000fac09 0100 000fac0c c000 0000 000fac0c"),
            "WPA 2 TKIP 0 AES 0");
  // Opportunistic encryption.
  EXPECT_EQ(Outcome("301a 0100 000fac04 0100 000fac04 0100 000fac12 c000 0000 000fac06"),
            "WPA 2 TKIP 0 AES 1");
  // The least that some devices send.
  EXPECT_EQ(Outcome("3002 0100"), "WPA 2 TKIP 1 AES 0");
  EXPECT_EQ(Outcome("dd16 0050f201 0100 0050f205 0100 0050f202 0100 0050f202"), "WPA 1 TKIP 1 AES 0");
}

}  // namespace
