// The device's network configuration in the key store: how it is read, and what each set-up stores.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <list>
#include <map>
#include <sstream>

#include "OwnedText.h"
#include "ZQNetwork.h"
#include "fault.h"
#include "module_fixture.h"

namespace {

const std::vector<std::string> kKeys = {
    "net.dhcp",    "net.wifi",   "net.essid",   "net.authtype", "net.enctype", "net.key",   "net.index",
    "net.wpatype", "net.ipaddr", "net.netmask", "net.gateway",  "net.ns",      "net.listed"};

// A text that a setter may change in place; null for none.
class Text {
 public:
  Text(const char* text) : null_(text == nullptr), bytes_(text != nullptr ? text : "") {}
  Text(std::string text) : null_(false), bytes_(std::move(text)) {}
  operator char*() { return null_ ? nullptr : bytes_.data(); }

 private:
  bool null_;
  std::string bytes_;
};

class NetworkSettingsTest : public ModuleTest {
 protected:
  NetworkSettingsTest() {
    New();
    Settle();
    ForgetTraces();
  }

  ZQNetwork& Network() { return *ZQUtil::m_pInstance->network; }

  // What a getter gives, "<null>" for null.
  std::string Of(char* (ZQNetwork::*getter)()) {
    const OwnedText text((Network().*getter)());
    return text != nullptr ? text.get() : "<null>";
  }

  std::string Stripped(const std::string& text) {
    Text copy{text};
    Network().StripCarriageReturn(copy);
    return copy.operator char*();
  }

  int32_t WirelessDhcp(Text ssid, Text auth, Text encryption, Text kind, Text key, int32_t index, Text wpa) {
    return Network().setWirelessNetworkDHCP(ssid, auth, encryption, kind, key, index, wpa);
  }
  int32_t WirelessStatic(Text ip, Text mask, Text dns1, Text dns2, Text gateway, Text ssid, Text auth,
                         Text encryption, Text kind, Text key, int32_t index, Text wpa) {
    return Network().setWirelessNetworkStatic(ip, mask, dns1, dns2, gateway, ssid, auth, encryption, kind,
                                              key, index, wpa);
  }
  void WiredStatic(Text ip, Text mask, Text dns1, Text dns2, Text gateway) {
    Network().setWiredNetworkStatic(ip, mask, dns1, dns2, gateway);
  }

  // Every key of a set-up has a value that is to go, or stay.
  static void StoreOldSetUp() {
    for (const std::string& key : kKeys) StoreKey(key, "old");
  }
  // The keys of a set-up that are stored, as "dhcp=YES wifi=NO ...".
  static std::string Stored() {
    std::string all;
    for (const std::string& key : kKeys) {
      const std::string value = StoredKey(key);
      if (value != "<none>") all += (all.empty() ? "" : " ") + key.substr(4) + "=" + value;
    }
    return all;
  }
  // A network that was seen, as a scan leaves it.
  void SeeNetwork(const char* name) {
    auto* const record = static_cast<_ESSIDStruct*>(
        zq__calloc(1, sizeof(_ESSIDStruct), "class_modules/ZQUtil/test", __LINE__));
    if (name != nullptr) record->ESSID = zq__newString(name, "class_modules/ZQUtil/test", __LINE__);
    seen_.emplace_back(record);
    Network().essidList->AddTail(record);
  }
  ~NetworkSettingsTest() override {
    for (auto& record : seen_) {
      if (!Network().essidList->Remove(record.get())) continue;
      zq__free(record->ESSID, "class_modules/ZQUtil/test", __LINE__);
    }
  }

  // The traces of the calls: a restart's thread has its own pace, and the store says what keys it lacks.
  std::string OwnTraces() const {
    std::string all;
    std::istringstream lines(Traces());
    for (std::string line; std::getline(lines, line);) {
      const bool others = line.find("S12") != std::string::npos || line.rfind("nvram: ", 0) == 0 ||
                          line == "ZQUtil Calling system for network restart";
      if (!others) all += line + "\n";
    }
    return all;
  }

 private:
  struct Release {
    void operator()(_ESSIDStruct* record) const { zq__free(record, "class_modules/ZQUtil/test", __LINE__); }
  };
  std::vector<std::unique_ptr<_ESSIDStruct, Release>> seen_;
};

TEST_F(NetworkSettingsTest, AFreshDeviceIsWiredTakesAnAddressFromTheNetworkAndHasNoProxy) {
  EXPECT_TRUE(Network().isDHCPEnabled());
  EXPECT_FALSE(Network().isWireless());
  EXPECT_FALSE(Network().isProxyEnabled());
  EXPECT_EQ(Network().getIndex(), 0);
  EXPECT_EQ(Of(&ZQNetwork::getKey), "");
  EXPECT_EQ(Of(&ZQNetwork::getKeyType), "NOKEY");
  EXPECT_EQ(Of(&ZQNetwork::getEncryption), "DISABLED");
  EXPECT_EQ(Of(&ZQNetwork::getNetAuth), "OPEN");
  EXPECT_EQ(Of(&ZQNetwork::getConfiguredESSID), "");
  EXPECT_EQ(Of(&ZQNetwork::getProxy), "");
  EXPECT_STREQ(Network().GetCurrentInterface(), "eth0");
}

TEST_F(NetworkSettingsTest, WordsCountInAnyCaseAndOthersAreTheDefault) {
  const auto read = [&](const char* key, const char* value, bool (ZQNetwork::*getter)()) {
    StoreKey(key, value);
    return (Network().*getter)();
  };
  for (const char* word : {"yes", "YES", "Yes"})
    EXPECT_TRUE(read("net.wifi", word, &ZQNetwork::isWireless)) << word;
  for (const char* word : {"NO", "", "true", "yess"}) {
    EXPECT_FALSE(read("net.wifi", word, &ZQNetwork::isWireless)) << word;
  }
  for (const char* word : {"no", "NO", "No"})
    EXPECT_FALSE(read("net.dhcp", word, &ZQNetwork::isDHCPEnabled)) << word;
  for (const char* word : {"YES", "", "false", "none"}) {
    EXPECT_TRUE(read("net.dhcp", word, &ZQNetwork::isDHCPEnabled)) << word;
  }
  for (const char* word : {"true", "TRUE", "True"}) {
    EXPECT_TRUE(read("net.proxyen", word, &ZQNetwork::isProxyEnabled)) << word;
  }
  for (const char* word : {"FALSE", "", "yes", "1"}) {
    EXPECT_FALSE(read("net.proxyen", word, &ZQNetwork::isProxyEnabled)) << word;
  }
}

TEST_F(NetworkSettingsTest, TheCurrentInterfaceFollowsTheKindOfNetwork) {
  StoreKey("net.wifi", "yes");
  EXPECT_STREQ(Network().GetCurrentInterface(), "ra0");
  EXPECT_EQ(Traces(), "");
  EXPECT_STREQ(Network().GetWirelessInterface(), "ra0");
  EXPECT_EQ(Traces(), "Wireless interface on intel is ra0\n");
}

TEST_F(NetworkSettingsTest, TheIndexIsADecimalNumber) {
  const std::map<std::string, int32_t> numbers = {{"2", 2}, {" 3x", 3}, {"", 0},
                                                  {"x", 0}, {"-1", -1}, {"99999999999999", 2147483647}};
  for (const auto& [text, number] : numbers) {
    StoreKey("net.index", text);
    EXPECT_EQ(Network().getIndex(), number) << text;
  }
}

TEST_F(NetworkSettingsTest, TheKindOfAKeyIsToldByItsLength) {
  const std::map<size_t, const char*> kinds = {{0, "NOKEY"},  {1, "WPA"},  {8, "WPA"},   {9, "WPA"},
                                               {10, "WEP40"}, {11, "WPA"}, {25, "WPA"},  {26, "WEP104"},
                                               {27, "WPA"},   {64, "WPA"}, {1000, "WPA"}};
  for (const auto& [length, kind] : kinds) {
    StoreKey("net.key", std::string(length, 'a'));
    EXPECT_EQ(Of(&ZQNetwork::getKeyType), kind) << length;
  }
}

TEST_F(NetworkSettingsTest, SecurityGettersTraceWhatTheyReturn) {
  StoreKey("net.key", "0123456789");
  StoreKey("net.enctype", "AES");
  StoreKey("net.authtype", "WPAPSK");
  Of(&ZQNetwork::getKeyType);
  Of(&ZQNetwork::getEncryption);
  Of(&ZQNetwork::getNetAuth);
  EXPECT_EQ(Traces(),
            "ZQUtil call to getKeyType\nZQUtil call to getKey\nZQUtil getKey returning 0123456789\n"
            "ZQUtil getKeyType returning WEP40\n"
            "ZQUtil call to getEncryption\nZQUtil getEncryption returning AES\n"
            "ZQUtil call to getNetAuth\nZQUtil getNetAuth returning WPAPSK\n");
}

TEST_F(NetworkSettingsTest, AClosedKeyStoreGivesNullFalseAndZero) {
  StoreKey("net.wifi", "yes");
  StoreKey("net.proxyen", "true");
  StoreKey("net.index", "3");
  const ClosedKeyStore closed;
  EXPECT_FALSE(Network().isDHCPEnabled());
  EXPECT_FALSE(Network().isWireless());
  EXPECT_FALSE(Network().isProxyEnabled());
  EXPECT_STREQ(Network().GetCurrentInterface(), "eth0");
  EXPECT_EQ(Network().getIndex(), 0);
  ForgetTraces();
  std::string answers;
  for (auto getter : {&ZQNetwork::getKey, &ZQNetwork::getEncryption, &ZQNetwork::getNetAuth,
                      &ZQNetwork::getConfiguredESSID, &ZQNetwork::getProxy, &ZQNetwork::getKeyType}) {
    answers += Of(getter) + " ";
  }
  EXPECT_EQ(answers, "<null> <null> <null> <null> <null> NOKEY ");
  EXPECT_EQ(Traces().find("ZQUtil getKey returning"), std::string::npos);
  EXPECT_NE(Traces().find("ZQUtil getKeyType returning NOKEY\n"), std::string::npos);
}

TEST_F(NetworkSettingsTest, AValueIsCutAt127Characters) {
  const std::map<std::string, char* (ZQNetwork::*)()> getters = {
      {"net.key", &ZQNetwork::getKey},
      {"net.enctype", &ZQNetwork::getEncryption},
      {"net.authtype", &ZQNetwork::getNetAuth},
      {"net.essid", &ZQNetwork::getConfiguredESSID},
      {"net.proxy", &ZQNetwork::getProxy}};
  for (const auto& [key, getter] : getters) {
    for (const size_t length : {size_t{127}, size_t{128}, size_t{1000}}) {
      StoreKey(key, std::string(length, 'v'));
      EXPECT_EQ(Of(getter), std::string(127, 'v')) << key << " of " << length;
    }
  }
  StoreKey("net.index", std::string(1000, '0') + "7");
  EXPECT_EQ(Network().getIndex(), 0) << "the 7 is beyond the cut";
}

TEST_F(NetworkSettingsTest, OfTwoLineBreaksInARowOnlyTheFirstGoes) {
  const std::map<std::string, std::string> texts = {
      {"a\r\nb", "a\nb"}, {"a\rb", "ab"},     {"a\nb", "ab"},       {"\r\n\r\n", "\n\n"},
      {"\n\n\n", "\n"},   {"a\n", "a"},       {"a\r\n", "a\n"},     {"\n", ""},
      {"", ""},           {"plain", "plain"}, {"\na\n\nb", "a\nb"}, {"\r\r\r\r", "\r\r"},
      {"a\nb\nc", "abc"}};
  for (const auto& [text, left] : texts) EXPECT_EQ(Stripped(text), left) << testing::PrintToString(text);
}

TEST_F(NetworkSettingsTest, StrippingTracesEachRemovalAndTheResult) {
  Stripped("a\nb\r\nc");
  EXPECT_EQ(
      Traces(),
      "ZQUtil Stripping a carriage return\nZQUtil Stripping a carriage return\nZQUtil new string is ab\nc\n");
  ForgetTraces();
  Stripped("nothing to do");
  Network().StripCarriageReturn(nullptr);
  EXPECT_EQ(Traces(), "");
}

TEST_F(NetworkSettingsTest, WiredDhcpErasesWhatBelongsToOtherSetUps) {
  StoreOldSetUp();
  EXPECT_EQ(Network().setWiredNetworkDHCP(), 1);
  EXPECT_EQ(Stored(), "dhcp=YES wifi=NO wpatype=old listed=old");
  EXPECT_EQ(OwnTraces(),
            "ZQUtil Writing new values for Wired DHCP Network\nZQUtil spawning network restart thread\n");
}

TEST_F(NetworkSettingsTest, WiredStaticStoresTheAddresses) {
  StoreOldSetUp();
  WiredStatic("10.0.0.2", "255.0.0.0", "1.2.3.4", "5.6.7.8", "10.0.0.1");
  EXPECT_EQ(
      Stored(),
      "dhcp=NO wifi=NO wpatype=old ipaddr=10.0.0.2 netmask=255.0.0.0 gateway=10.0.0.1 ns=1.2.3.4,5.6.7.8 "
      "listed=old");
  EXPECT_EQ(OwnTraces(),
            "ZQUtil Writing new values for Wired Static Network\n"
            "IP 10.0.0.2 Netmask 255.0.0.0 PDNS 1.2.3.4 SDNS 5.6.7.8 GW 10.0.0.1\n"
            "ZQUtil spawning network restart thread\n");
}

TEST_F(NetworkSettingsTest, WiredStaticShowsMissingTextsAsNull) {
  WiredStatic(nullptr, nullptr, nullptr, nullptr, nullptr);
  EXPECT_NE(OwnTraces().find("IP NULL Netmask NULL PDNS NULL SDNS NULL GW NULL\n"), std::string::npos);
  EXPECT_EQ(Stored(), "dhcp=NO wifi=NO ns=");
}

TEST_F(NetworkSettingsTest, NameServersAreAListWithACommaBeforeTheSecond) {
  const auto stored = [&](Text primary, Text secondary) {
    WiredStatic("1", "2", primary, secondary, "3");
    return StoredKey("net.ns");
  };
  EXPECT_EQ(stored("1.2.3.4", "5.6.7.8"), "1.2.3.4,5.6.7.8");
  EXPECT_EQ(stored("1.2.3.4", nullptr), "1.2.3.4");
  EXPECT_EQ(stored(nullptr, "5.6.7.8"), ",5.6.7.8");
  EXPECT_EQ(stored(nullptr, nullptr), "");
  EXPECT_EQ(stored("1.2.3.4", ""), "1.2.3.4,") << "empty is given";
  EXPECT_EQ(stored("", ""), ",");
  EXPECT_EQ(stored("1.2.3.4\n", "5.6.7.8\r\n"), "1.2.3.4,5.6.7.8\n");
}

TEST_F(NetworkSettingsTest, OverLongNameServersAreCutAndOverflowNothing) {
  for (const size_t length :
       {size_t{127}, size_t{128}, size_t{254}, size_t{255}, size_t{256}, size_t{1000}}) {
    const std::string server(length, '1');
    WiredStatic("1", "2", server, server, "3");
    EXPECT_EQ(StoredKey("net.ns"), (server + "," + server).substr(0, 255)) << length;
  }
}

TEST_F(NetworkSettingsTest, OtherOverLongTextsAreStoredWhole) {
  const std::string text(1000, 'x');
  WiredStatic(text, text, "1", "2", text);
  for (const char* key : {"net.ipaddr", "net.netmask", "net.gateway"}) EXPECT_EQ(StoredKey(key), text) << key;
  WirelessDhcp(text, text, text, text, text, 1, text);
  for (const char* key : {"net.essid", "net.authtype", "net.enctype", "net.key", "net.wpatype"}) {
    EXPECT_EQ(StoredKey(key), text) << key;
  }
}

TEST_F(NetworkSettingsTest, WirelessDhcpStoresTheNetworkAndErasesTheAddresses) {
  StoreOldSetUp();
  SeeNetwork("Home");
  EXPECT_EQ(WirelessDhcp("Home", "WPAPSK", "TKIP", "WPA", "secret12", 0, "WPA2"), 1);
  EXPECT_EQ(Stored(), "dhcp=YES wifi=YES essid=Home authtype=WPAPSK enctype=TKIP key=secret12 wpatype=WPA2");
  EXPECT_EQ(
      OwnTraces(),
      "ZQUtil Writing new values for Wireless DHCP Network\n"
      "SSID Home Auth WPAPSK Enc TKIP KeyType WPA Key secret12 index 0 WPAType WPA2\n"
      "ZQUtil Writing keys\nZQUtil Writing net.dhcp\nZQUtil Writing net.wifi\nZQUtil Writing net.essid\n"
      "ZQUtil Getting ESSID\nZQUtil Calling for Network Restart\nZQUtil spawning network restart thread\n");
}

TEST_F(NetworkSettingsTest, WhatAWirelessSetUpLacksIsErased) {
  StoreOldSetUp();
  SeeNetwork("Home");
  WirelessDhcp("Home", nullptr, nullptr, nullptr, nullptr, -1, nullptr);
  EXPECT_EQ(Stored(), "dhcp=YES wifi=YES essid=Home");
  EXPECT_NE(OwnTraces().find(
                "SSID Home Auth (NULL) Enc (NULL) KeyType (NULL) Key (NULL) index -1 WPAType (NULL)\n"),
            std::string::npos);
}

TEST_F(NetworkSettingsTest, AnIndexAboveZeroIsStored) {
  SeeNetwork("Home");
  WirelessDhcp("Home", "OPEN", "WEP", "WEP40", "0123456789", 4, "");
  EXPECT_EQ(StoredKey("net.index"), "4");
  EXPECT_EQ(Network().getIndex(), 4);
  WirelessDhcp("Home", "OPEN", "WEP", "WEP40", "0123456789", 2147483647, "");
  EXPECT_EQ(StoredKey("net.index"), "2147483647");
  WirelessDhcp("Home", "OPEN", "WEP", "WEP40", "0123456789", 0, "");
  EXPECT_EQ(StoredKey("net.index"), "<none>");
}

TEST_F(NetworkSettingsTest, WirelessStaticStoresTheNetworkAndTheAddresses) {
  StoreOldSetUp();
  SeeNetwork("Home");
  EXPECT_EQ(WirelessStatic("10.0.0.2", "255.0.0.0", "1.2.3.4", "5.6.7.8", "10.0.0.1", "Home", "OPEN", "WEP",
                           "WEP40", "0123456789", 2, "none"),
            1);
  EXPECT_EQ(Stored(),
            "dhcp=NO wifi=YES essid=Home authtype=OPEN enctype=WEP key=0123456789 index=2 wpatype=none "
            "ipaddr=10.0.0.2 netmask=255.0.0.0 gateway=10.0.0.1 ns=1.2.3.4,5.6.7.8");
  EXPECT_EQ(
      OwnTraces(),
      "ZQUtil Writing new values for Wireless Static Network\n"
      "IP 10.0.0.2 Netmask 255.0.0.0 PDNS 1.2.3.4 SDNS 5.6.7.8 GW 10.0.0.1 ssid Home netAuth OPEN encryption "
      "WEP keyType WEP40 key 0123456789 index2 WPAType none\nZQUtil spawning network restart thread\n");
}

TEST_F(NetworkSettingsTest, WirelessStaticShowsMissingTextsAsNull) {
  StoreOldSetUp();
  SeeNetwork("x");
  WirelessStatic(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0,
                 nullptr);
  EXPECT_NE(OwnTraces().find(
                "IP NULL Netmask NULL PDNS NULL SDNS NULL GW NULL ssid NULL netAuth NULL encryption NULL "
                "keyType NULL key NULL index0 WPAType (NULL)\n"),
            std::string::npos);
  for (const char* key : {"net.authtype", "net.enctype", "net.key", "net.wpatype", "net.index"}) {
    EXPECT_EQ(StoredKey(key), "<none>") << key;
  }
  EXPECT_EQ(StoredKey("net.listed"), "FALSE");
}

TEST_F(NetworkSettingsTest, ANetworkThatWasNotSeenIsNotListed) {
  SeeNetwork(nullptr);
  SeeNetwork("home");
  const auto listed = [&](const char* name) {
    StoreKey("net.listed", "old");
    WirelessDhcp(name, "OPEN", "DISABLED", "NOKEY", "", 0, "");
    return StoredKey("net.listed");
  };
  EXPECT_EQ(listed("home"), "<none>");
  EXPECT_EQ(listed("Home"), "FALSE") << "names count in their case";
  EXPECT_EQ(listed("hom"), "FALSE");
  EXPECT_EQ(listed(""), "FALSE");
  EXPECT_EQ(listed("home\n"), "<none>") << "compared as it is stored";
}

TEST_F(NetworkSettingsTest, EveryTextOfASetUpIsStripped) {
  SeeNetwork("Home");
  WirelessStatic("1\n", "2\n", "3\n", "4\n", "5\n", "Home\n", "6\n", "7\n", "8\n", "9\n", 1, "10\n");
  EXPECT_EQ(Stored(),
            "dhcp=NO wifi=YES essid=Home authtype=6 enctype=7 key=9 index=1 wpatype=10 ipaddr=1 netmask=2 "
            "gateway=5 "
            "ns=3,4");
  const std::string all = OwnTraces();
  size_t count = 0;
  for (size_t at = all.find("Stripping"); at != std::string::npos; at = all.find("Stripping", at + 1))
    ++count;
  EXPECT_EQ(count, 11U) << "the kind of key, too";
}

TEST_F(NetworkSettingsTest, AClosedKeyStoreStoresNothingAndRestartsNothing) {
  StoreOldSetUp();
  const std::string before = Stored();
  {
    const ClosedKeyStore closed;
    EXPECT_EQ(Network().setWiredNetworkDHCP(), -1);
    WiredStatic("1", "2", "3", "4", "5");
    ForgetTraces();
    EXPECT_EQ(WirelessStatic("1", "2", "3", "4", "5", "6", "7", "8", "9", "0", 1, "2"), -1);
    EXPECT_EQ(
        OwnTraces(),
        "ZQUtil Writing new values for Wireless Static Network\n"
        "IP 1 Netmask 2 PDNS 3 SDNS 4 GW 5 ssid 6 netAuth 7 encryption 8 keyType 9 key 0 index1 WPAType 2\n")
        << "no word of the failure";
    ForgetTraces();
    EXPECT_EQ(WirelessDhcp("1", "2", "3", "4", "5", 1, "2"), -1);
    const std::string traces = OwnTraces();
    EXPECT_EQ(traces.rfind("ZQUtil Failed opening NVRAM keys\n"), traces.size() - 33) << traces;
    Network().setProxyEnabled(true);
    Network().setProxy(Text{"1"});
  }
  EXPECT_EQ(Stored(), before);
  EXPECT_EQ(StoredKey("net.proxy"), "<none>");
  EXPECT_EQ(StoredKey("net.proxyen"), "<none>");
  EXPECT_EQ(trace.Has("ZQUtil spawning network restart thread"), false);
}

// The disk refuses once, at each access in turn: a getter gives what is stored, what it gives for a missing key, or null.
TEST_F(NetworkSettingsTest, AKeyStoreThatRefusesOnceIsReadAsItIsAsEmptyOrNotAtAll) {
  StoreKey("net.key", "0123456789");
  StoreKey("net.authtype", "WPAPSK");
  for (const char* call : {"open", "read", "flock", "close"}) {
    for (int which = 1;; ++which) {
      const Fault fault(OnThisMachine("/var/lib/zq"),
                        std::string(call) + ":" + std::to_string(which) + ":EIO");
      const std::string key = Of(&ZQNetwork::getKey);
      const std::string authentication = Of(&ZQNetwork::getNetAuth);
      EXPECT_TRUE(key == "0123456789" || key.empty() || key == "<null>")
          << key << ", " << call << " " << which;
      EXPECT_TRUE(authentication == "WPAPSK" || authentication == "OPEN" || authentication == "<null>")
          << authentication << ", " << call << " " << which;
      if (fault.Calls(call) < which) break;
      ASSERT_LT(which, 100);
    }
  }
  EXPECT_EQ(Of(&ZQNetwork::getKey), "0123456789");
}

// The disk refuses once, at each access in turn: every key has its old or its new value, and the network restarts.
TEST_F(NetworkSettingsTest, AKeyStoreThatRefusesOnceLosesOneValueAtMost) {
  SeeNetwork("Home");
  for (const char* call : {"open", "write", "fsync", "rename"}) {
    for (int which = 1;; ++which) {
      StoreOldSetUp();
      long calls = 0;
      {
        const Fault fault(OnThisMachine("/var/lib/zq"),
                          std::string(call) + ":" + std::to_string(which) + ":EIO");
        WirelessDhcp("Home", "WPAPSK", "TKIP", "WPA", "secret12", 3, "WPA2");
        calls = fault.Calls(call);
      }
      const std::map<std::string, std::string> wanted = {{"net.dhcp", "YES"},     {"net.wifi", "YES"},
                                                         {"net.essid", "Home"},   {"net.authtype", "WPAPSK"},
                                                         {"net.enctype", "TKIP"}, {"net.key", "secret12"},
                                                         {"net.wpatype", "WPA2"}, {"net.index", "3"}};
      int old = 0;
      for (const std::string& key : kKeys) {
        const std::string value = StoredKey(key);
        const std::string fresh = wanted.count(key) != 0 ? wanted.at(key) : "<none>";
        EXPECT_TRUE(value == fresh || value == "old") << key << "=" << value << ", " << call << " " << which;
        if (value == "old") ++old;
      }
      EXPECT_TRUE(old <= 1 || old == static_cast<int>(kKeys.size()))
          << old << " old, " << call << " " << which;
      if (calls < which) break;
      ASSERT_LT(which, 500);
    }
  }
}

class ProxyTest : public NetworkSettingsTest {
 protected:
  // What the environment says; "<none>" when it says nothing.
  static std::string Environment() {
    const char* const value = getenv("http_proxy");
    return value != nullptr ? value : "<none>";
  }
  std::string Applied(const std::string& proxy, const std::string& enabled = "TRUE") {
    StoreKey("net.proxy", proxy);
    StoreKey("net.proxyen", enabled);
    Network().ConditionallyEnableProxy();
    return Environment();
  }
};

TEST_F(ProxyTest, AnAddressGetsTheSchemeThatItLacks) {
  EXPECT_EQ(Applied("10.0.0.1:8080"), "http://10.0.0.1:8080");
  EXPECT_EQ(Applied("http://10.0.0.1:8080"), "http://10.0.0.1:8080");
  EXPECT_EQ(Applied("HTTP://10.0.0.1"), "http://HTTP://10.0.0.1") << "only the small letters count";
  EXPECT_EQ(Applied("http://"), "http://http://") << "the bare scheme is no address";
  EXPECT_EQ(Applied("http://x"), "http://x");
  EXPECT_EQ(Applied("http:/"), "http://http:/");
  EXPECT_EQ(Applied("x"), "http://x");
}

TEST_F(ProxyTest, AnOverLongAddressIsCutAt127Characters) {
  for (const size_t length : {size_t{127}, size_t{128}, size_t{1000}}) {
    EXPECT_EQ(Applied(std::string(length, 'p')), "http://" + std::string(127, 'p')) << length;
  }
}

TEST_F(ProxyTest, ItIsAppliedOnlyWhenEnabledAndNotEmpty) {
  EXPECT_EQ(Applied("p", "true"), "http://p");
  EXPECT_EQ(Applied("p", "FALSE"), "<none>");
  EXPECT_EQ(Applied("p", "yes"), "<none>");
  EXPECT_EQ(Applied("p", "TRUE"), "http://p");
  EXPECT_EQ(Applied("", "TRUE"), "<none>");
}

TEST_F(ProxyTest, SettersStoreAndApply) {
  Network().setProxyEnabled(true);
  EXPECT_EQ(StoredKey("net.proxyen"), "TRUE");
  EXPECT_EQ(Environment(), "<none>");
  Network().setProxy(Text{"10.0.0.1\n"});
  EXPECT_EQ(StoredKey("net.proxy"), "10.0.0.1");
  EXPECT_EQ(Environment(), "http://10.0.0.1");
  Network().setProxyEnabled(false);
  EXPECT_EQ(StoredKey("net.proxyen"), "FALSE");
  EXPECT_EQ(StoredKey("net.proxy"), "10.0.0.1") << "kept for the next time";
  EXPECT_EQ(Environment(), "<none>");
  EXPECT_EQ(
      OwnTraces(),
      "ZQUtil removing http proxy info\nZQUtil Stripping a carriage return\nZQUtil new string is 10.0.0.1\n"
      "ZQUtil Setting an http proxy http://10.0.0.1\nZQUtil removing http proxy info\n");
}

// The variables of the process, each in its place, as other threads find them.
std::vector<const char*> Places() {
  std::vector<const char*> places;
  for (char** at = environ; *at != nullptr; ++at) places.push_back(*at);
  return places;
}

// A sanitizer's allocator moves what it is asked to keep at its size; the C library's does not.
void ExpectInPlace([[maybe_unused]] char** place) {
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
  EXPECT_EQ(environ, place);
#endif
}

TEST_F(ProxyTest, ComingAndGoingItMovesNoOtherVariable) {
  for (const bool inherited : {false, true}) {
    // As a host is started: the first of its variables, and no room behind the last.
    // What setenv changes, it may move and free: the array of before is not to be had back, its copy is.
    static std::list<std::vector<char*>> copies;
    std::vector<char*>& kept = copies.emplace_back();
    for (char** at = environ; *at != nullptr; ++at) kept.push_back(*at);
    kept.push_back(nullptr);
    static char first[] = "http_proxy=http://inherited";
    std::vector<char*> variables;
    if (inherited) variables.push_back(first);
    for (char** at = environ; *at != nullptr; ++at) variables.push_back(*at);
    variables.push_back(nullptr);
    environ = variables.data();
    {
      StoreKey("net.proxyen", "FALSE");
      const ZQNetwork network(true);
      char** const place = environ;
      const std::vector<const char*> others = Places();
      for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(Applied("p"), "http://p");
        ExpectInPlace(place);
        EXPECT_EQ(std::vector<const char*>(environ, environ + others.size()), others);
        EXPECT_EQ(Applied("p", "FALSE"), "<none>");
        ExpectInPlace(place);
        EXPECT_EQ(Places(), others);
      }
    }
    environ = kept.data();
  }
}

TEST_F(ProxyTest, ANewObjectWithAClosedKeyStoreKeepsWhatTheHostInherited) {
  Applied("p", "FALSE");
  const ClosedKeyStore closed;
  {
    const ZQNetwork network(true);
    EXPECT_EQ(Environment(), "<none>");
  }
  setenv("http_proxy", "http://inherited", 1);
  const ZQNetwork network(true);
  EXPECT_EQ(Environment(), "http://inherited");
  unsetenv("http_proxy");
}

TEST_F(ProxyTest, AClosedKeyStoreLeavesTheEnvironmentAsItIs) {
  Applied("p");
  const ClosedKeyStore closed;
  Network().ConditionallyEnableProxy();
  Network().setProxyEnabled(false);
  EXPECT_EQ(Environment(), "http://p");
}

class HardwareTest : public ModuleTest {
 protected:
  int32_t HardwareOf(const std::string& stored) {
    StoreKey("hwinfo.type", stored);
    const ZQNetwork network(true);
    return network.hardwareType;
  }
};

TEST_F(HardwareTest, NumbersAbove8046AreAVardo2) {
  EXPECT_EQ(HardwareOf("8046"), 0);
  EXPECT_FALSE(trace.Has("This is a Vardo2"));
  EXPECT_EQ(HardwareOf("8047"), 2);
  EXPECT_TRUE(trace.Has("This is a Vardo2"));
  EXPECT_EQ(HardwareOf("99999999999"), 2);
  EXPECT_EQ(HardwareOf("-8047"), 0);
  EXPECT_EQ(HardwareOf("x"), 0);
  EXPECT_EQ(HardwareOf(""), 0);
}

TEST_F(HardwareTest, ADeviceWhoseKeyStoreIsClosedIsAnOrdinaryOne) {
  const ClosedKeyStore closed;
  const ZQNetwork network(true);
  EXPECT_EQ(network.hardwareType, 0);
  EXPECT_EQ(network.connectionState, 0);
  EXPECT_STREQ(network.essidList->Name(), "ESSID List");
  EXPECT_NE(Traces().find("ZQUtil checking for hardware type\n"), std::string::npos);
  EXPECT_NE(Traces().find("ZQUtil could not open nvram\n"), std::string::npos);
}

}  // namespace
