// The network methods of the script class, over the bare service table.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <sstream>
#include <thread>
#include <utility>

#include "ZQNetwork.h"
#include "module_fixture.h"
#include "zq_memory.h"

namespace {

class NetworkMethodsTest : public ModuleTest {
 protected:
  NetworkMethodsTest() : util_(New()) {
    Settle();
    ForgetTraces();
  }

  std::string Ask(const std::string& method, std::vector<zq_Value> arguments = {}) {
    ForgetTraces();
    return engine.Answer(util_, method, std::move(arguments));
  }
  // The traces of the calls: a restart's thread has its own pace, the store
  // says what keys it lacks, and what the network object traces is another
  // test's.
  std::string MethodTraces() const {
    std::string all;
    std::istringstream lines(TracesWithoutNews());
    for (std::string line; std::getline(lines, line);) {
      const bool own = line.rfind("ZQUtil GUI ", 0) == 0 || line.rfind("ZQUtil Get", 0) == 0 ||
                       line.rfind("ZQUtil SetWireless", 0) == 0 || line.rfind("ZQUtil returning", 0) == 0;
      if (own && line.rfind("ZQUtil Getting ", 0) != 0 && line.rfind("ZQUtil GetESSIDList", 0) != 0) {
        all += line + "\n";
      }
    }
    return all;
  }
  std::vector<zq_Value> Texts(std::initializer_list<const char*> texts) {
    std::vector<zq_Value> values;
    for (const char* text : texts) values.push_back(S(text));
    return values;
  }
  // "Name=... Signal=..." of an object, in the order in which they were set.
  std::string Properties(zq_Value value) {
    const auto* const object = reinterpret_cast<Object*>(value);
    std::string all;
    for (const std::string& name : object->order) {
      all += (all.empty() ? "" : " ") + name + "=" + engine.Show(object->properties.at(name));
    }
    return all;
  }
  std::string ObjectOf(const std::string& method) {
    zq_Value result = ZQ_VALUE_VOID;
    EXPECT_EQ(engine.Call(util_, method, {}, &result), 1);
    return engine.Show(result) == "<object>" ? Properties(result) : engine.Show(result);
  }

  Object& util_;
};

TEST_F(NetworkMethodsTest, GettersAnswerWhatTheKeyStoreSays) {
  EXPECT_EQ(Ask("getProxy"), "");
  EXPECT_EQ(Ask("getConfiguredESSID"), "");
  EXPECT_EQ(Ask("getNetworkType"), "wired");
  EXPECT_EQ(Ask("getDHCPEnabled"), "YES");
  EXPECT_EQ(Ask("getProxyEnabled"), "NO");
  EXPECT_EQ(Ask("getConfiguredESSIDListed"), "");
  StoreKey("net.proxy", "10.0.0.1");
  StoreKey("net.essid", "Home");
  StoreKey("net.wifi", "yes");
  StoreKey("net.dhcp", "no");
  StoreKey("net.proxyen", "true");
  StoreKey("net.listed", "FALSE");
  EXPECT_EQ(Ask("getProxy"), "10.0.0.1");
  EXPECT_EQ(MethodTraces(), "ZQUtil GUI Call to GetProxy\nZQUtil GetProxy returning 10.0.0.1\n");
  EXPECT_EQ(Ask("getConfiguredESSID"), "Home");
  EXPECT_EQ(MethodTraces(),
            "ZQUtil GUI Call to GetConfiguredESSID\nZQUtil "
            "GetConfiguredESSID Returning Home\n");
  EXPECT_EQ(Ask("getNetworkType"), "wireless");
  EXPECT_EQ(MethodTraces(), "ZQUtil GUI Call to GetNetworkType\nZQUtil returning wireless\n");
  EXPECT_EQ(Ask("getDHCPEnabled"), "NO");
  EXPECT_EQ(MethodTraces(), "ZQUtil GUI Call to GetDHCPEnabled\nZQUtil returning NO\n");
  EXPECT_EQ(Ask("getProxyEnabled"), "YES");
  EXPECT_EQ(MethodTraces(), "ZQUtil GUI Call to GetProxyEnabled\nZQUtil returning YES\n");
  EXPECT_EQ(Ask("getConfiguredESSIDListed"), "FALSE");
  EXPECT_EQ(MethodTraces(),
            "ZQUtil GUI Call to GetConfiguredESSIDListed\nZQUtil "
            "GetConfiguredESSIDListed returning FALSE\n");
}

TEST_F(NetworkMethodsTest, GettersAnswerWhatTheSystemSays) {
  WriteFile(OnThisMachine("/proc/net/route"), "eth0\t00000000\t0101A8C0\t0003\n");
  WriteFile("/etc/resolv.conf", "nameserver 1.1.1.1\nnameserver 2.2.2.2\n");
  EXPECT_EQ(Ask("getGateway"), "192.168.1.1");
  EXPECT_EQ(MethodTraces(),
            "ZQUtil GUI Call to GetGateway\nZQUtil GetGateway "
            "returning 192.168.1.1\n");
  EXPECT_EQ(Ask("getPrimaryDNS"), "1.1.1.1");
  EXPECT_EQ(MethodTraces(),
            "ZQUtil GUI Call to GetPrimaryDNS\nZQUtil "
            "GetPrimaryDNS returning 1.1.1.1\n");
  EXPECT_EQ(Ask("getSecondaryDNS"), "2.2.2.2");
  EXPECT_EQ(MethodTraces(),
            "ZQUtil GUI Call to GetSecondaryDNS\nZQUtil "
            "GetSecondaryDNS returning 2.2.2.2\n");
  const std::string ip = Ask("getIP");
  EXPECT_EQ(MethodTraces(), "ZQUtil GUI Call to GetIP\nZQUtil GetIP Returning " + ip + "\n");
  const std::string mask = Ask("getSubnetMask");
  EXPECT_EQ(MethodTraces(),
            "ZQUtil GUI Call to GetSubnetMask\nZQUtil GetSubnetMask returning " + mask + "\n");
  const std::string mac = Ask("getMACAddr");
  EXPECT_EQ(mac, "02:00:00:00:10:01");
  EXPECT_EQ(MethodTraces(),
            "ZQUtil GUI Call to GetMACAddr\nZQUtil returning MAC Address for interface 3, 02:00:00:00:10:01\n"
            "ZQUtil GetMACAddr returning 02:00:00:00:10:01\n");
  EXPECT_EQ(Ask("getSignalStrength"), "<int 0>");
  EXPECT_EQ(MethodTraces(),
            "ZQUtil GUI Call to GetSignalStrength\nZQUtil "
            "GetSignalStrength Returning 0\n");
}

TEST_F(NetworkMethodsTest, TextsAreMadeWithTheirNulCounted) {
  StoreKey("net.wifi", "yes");
  const auto length = [&](const char* method) {
    zq_Value result = ZQ_VALUE_VOID;
    EXPECT_EQ(engine.Call(util_, method, {}, &result), 1);
    return engine.LengthGiven(result);
  };
  EXPECT_EQ(length("getNetworkType"), 9U);
  EXPECT_EQ(length("getDHCPEnabled"), 4U);
  EXPECT_EQ(length("getProxyEnabled"), 3U);
  EXPECT_EQ(length("getProxy"), 1U);
}

TEST_F(NetworkMethodsTest, TheFirstTimeIsNoUntilItIsSet) {
  EXPECT_EQ(Ask("getFirstTime"), "No");
  EXPECT_EQ(Ask("setFirstTime", {S("")}), "<void>");
  Settle();
  EXPECT_EQ(Ask("getFirstTime"), "No") << "empty";
  Ask("setFirstTime", {S("Done")});
  Settle();
  EXPECT_EQ(Ask("getFirstTime"), "Done");
  EXPECT_EQ(MethodTraces(), "ZQUtil GetFirstTime returning Done\n");
}

TEST_F(NetworkMethodsTest, AClosedKeyStoreFailsItsOwnReadersAndLeavesTheOthersEmpty) {
  StoreKey("net.proxy", "10.0.0.1");
  const ClosedKeyStore closed;
  EXPECT_EQ(Ask("getFirstTime"), "<returned 0>");
  EXPECT_EQ(MethodTraces(), "");
  EXPECT_EQ(Ask("getConfiguredESSIDListed"), "<returned 0>");
  EXPECT_EQ(MethodTraces(), "ZQUtil GUI Call to GetConfiguredESSIDListed\n");
  EXPECT_EQ(Ask("getProxy"), "");
  EXPECT_EQ(MethodTraces(), "ZQUtil GUI Call to GetProxy\n") << "an answer that did not come is not traced";
  EXPECT_EQ(Ask("getConfiguredESSID"), "");
  EXPECT_EQ(Ask("getDHCPEnabled"), "NO");
  EXPECT_EQ(ObjectOf("getWirelessSecurity"), "netAuth= encryption= keyType=NOKEY key= index=<int 0>");
}

TEST_F(NetworkMethodsTest, WithoutTheNetworkEveryMethodSucceedsAndDoesNothing) {
  ZQNetwork* const network = std::exchange(ZQUtil::m_pInstance->network, nullptr);
  for (const char* method :
       {"getIP", "getMACAddr", "getSubnetMask", "getPrimaryDNS", "getSecondaryDNS", "getGateway", "getProxy",
        "getConfiguredESSID", "getSignalStrength", "getNetworkType", "getProxyEnabled", "getDHCPEnabled",
        "getESSIDList", "getCachedESSIDList", "setWiredNetworkDHCP"}) {
    EXPECT_EQ(Ask(method), "<void>") << method;
  }
  EXPECT_EQ(Ask("setProxy", {S("p")}), "<void>");
  EXPECT_EQ(Ask("setProxyEnabled", {S("yes")}), "<void>");
  EXPECT_EQ(Ask("setWiredNetworkStatic", Texts({"1", "2", "3", "4", "5"})), "<void>");
  EXPECT_EQ(Ask("setWirelessNetworkDHCP", Texts({"1", "2", "3", "4", "5", "6", "7"})), "<void>");
  EXPECT_EQ(
      Ask("setWirelessNetworkStatic", Texts({"1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11", "12"})),
      "<void>");
  EXPECT_EQ(MethodTraces(), "ZQUtil GUI Call to SetWirelessNetworkStatic\n");
  EXPECT_EQ(ObjectOf("getESSID"), "") << "an object, empty";
  EXPECT_EQ(ObjectOf("getWirelessSecurity"), "");
  EXPECT_EQ(Ask("getFirstTime"), "No");
  EXPECT_EQ(Ask("getConfiguredESSIDListed"), "");
  EXPECT_EQ(StoredKey("net.dhcp"), "<none>");
  ZQUtil::m_pInstance->network = network;
}

TEST_F(NetworkMethodsTest, TheProxyIsSetAndEnabled) {
  EXPECT_EQ(Ask("setProxy", {S("10.0.0.1:8080")}), "<void>");
  EXPECT_EQ(MethodTraces(), "ZQUtil GUI Call to SetProxy\n");
  EXPECT_EQ(Ask("getProxy"), "10.0.0.1:8080");
  for (const char* word : {"true", "TRUE", "True", "yes", "YES", "Yes"}) {
    Ask("setProxyEnabled", {S("no")});
    EXPECT_EQ(getenv("http_proxy"), nullptr);
    EXPECT_EQ(Ask("setProxyEnabled", {S(word)}), "<void>");
    EXPECT_EQ(MethodTraces(), "ZQUtil GUI Call to SetProxyEnabled\n");
    EXPECT_EQ(Ask("getProxyEnabled"), "YES") << word;
    EXPECT_STREQ(getenv("http_proxy"), "http://10.0.0.1:8080");
  }
  for (const char* word : {"1", "", "on", "yes ", "FALSE"}) {
    Ask("setProxyEnabled", {S("yes")});
    Ask("setProxyEnabled", {S(word)});
    EXPECT_EQ(Ask("getProxyEnabled"), "NO") << word;
  }
}

TEST_F(NetworkMethodsTest, ASetterWithoutItsArgumentChangesNothing) {
  Ask("setProxy", {S("p")});
  Ask("setProxyEnabled", {S("yes")});
  Ask("setFirstTime", {S("Done")});
  Settle();
  for (const char* setter : {"setProxy", "setProxyEnabled", "setFirstTime"}) {
    EXPECT_EQ(Ask(setter), "<void>");
    EXPECT_EQ(Ask(setter, {ZQ_VALUE_VOID}), "<void>");
    EXPECT_EQ(Ask(setter, {ZQ_VALUE_NULL}), "<void>");
  }
  Settle();
  EXPECT_EQ(Ask("getProxy"), "p");
  EXPECT_EQ(Ask("getProxyEnabled"), "YES");
  EXPECT_EQ(Ask("getFirstTime"), "Done");
}

TEST_F(NetworkMethodsTest, TheScriptsOwnTextIsLeftAsItIs) {
  const zq_Value text = S("10.0.0.1\n");
  Ask("setProxy", {text});
  EXPECT_EQ(Ask("getProxy"), "10.0.0.1");
  EXPECT_EQ(engine.Show(text), "10.0.0.1\n");
}

TEST_F(NetworkMethodsTest, OfALineBreakOfTwoCharactersTheSecondIsStored) {
  Ask("setProxy", {S("a\r\nb")});
  EXPECT_EQ(StoredKey("net.proxy"), "a\nb");
  Ask("setProxy", {S("a\rb")});
  EXPECT_EQ(StoredKey("net.proxy"), "ab");
}

TEST_F(NetworkMethodsTest, WiredDhcpIsSet) {
  EXPECT_EQ(Ask("setWiredNetworkDHCP"), "<void>");
  EXPECT_EQ(MethodTraces(), "ZQUtil GUI Call to SetWiredNetworkDHCP\n");
  EXPECT_EQ(StoredKey("net.dhcp") + StoredKey("net.wifi"), "YESNO");
}

TEST_F(NetworkMethodsTest, WiredStaticWantsFiveTexts) {
  EXPECT_EQ(Ask("setWiredNetworkStatic", Texts({"1", "2", "3", "4"})), "<void>");
  for (size_t place = 0; place < 5; ++place) {
    for (const zq_Value missing : {ZQ_VALUE_VOID, ZQ_VALUE_NULL}) {
      std::vector<zq_Value> arguments = Texts({"1", "2", "3", "4", "5"});
      arguments[place] = missing;
      Ask("setWiredNetworkStatic", arguments);
      EXPECT_EQ(MethodTraces(), "ZQUtil GUI Call to SetWiredNetworkStatic\n");
    }
  }
  EXPECT_EQ(StoredKey("net.dhcp"), "<none>");
  EXPECT_EQ(Ask("setWiredNetworkStatic",
                Texts({"10.0.0.2", "255.0.0.0", "1.1.1.1", "2.2.2.2", "10.0.0.1", "more"})),
            "<void>");
  EXPECT_EQ(StoredKey("net.ipaddr") + " " + StoredKey("net.netmask") + " " + StoredKey("net.gateway") + " " +
                StoredKey("net.ns") + " " + StoredKey("net.wifi"),
            "10.0.0.2 255.0.0.0 10.0.0.1 1.1.1.1,2.2.2.2 NO");
}

class WirelessMethodsTest : public NetworkMethodsTest {
 protected:
  WirelessMethodsTest() { See("Home", 30); }
  ~WirelessMethodsTest() override { Forget(); }

  // A network that was seen, as a scan leaves it.
  _ESSIDStruct& See(const char* name, int32_t strength) {
    auto* const record = static_cast<_ESSIDStruct*>(
        zq__calloc(1, sizeof(_ESSIDStruct), "class_modules/ZQUtil/test", __LINE__));
    record->ESSID = zq__newString(name, "class_modules/ZQUtil/test", __LINE__);
    record->strength = strength;
    ZQUtil::m_pInstance->network->essidList->AddTail(record);
    return *record;
  }
  void Forget() {
    while (auto* const record =
               static_cast<_ESSIDStruct*>(ZQUtil::m_pInstance->network->essidList->RemoveHead())) {
      zq__free(record->ESSID, "class_modules/ZQUtil/test", __LINE__);
      zq__free(record, "class_modules/ZQUtil/test", __LINE__);
    }
  }
  // The stored set-up.
  static std::string Stored() {
    std::string all;
    for (const char* key : {"dhcp", "wifi", "essid", "authtype", "enctype", "key", "index", "wpatype",
                            "ipaddr", "netmask", "gateway", "ns", "listed"}) {
      const std::string value = StoredKey(std::string("net.") + key);
      if (value != "<none>") all += (all.empty() ? "" : " ") + std::string(key) + "=" + value;
    }
    return all;
  }
  static std::string Missing(int from, int to) {
    std::string all;
    for (int i = from; i >= to; --i) {
      all += "ZQUtil SetWirelessNetworkStatic missing argument " + std::to_string(i) + "\n";
    }
    return all;
  }

  // The entries of the array that a method answers, a line each.
  std::string Entries(const std::string& method) {
    ForgetTraces();
    zq_Value result = ZQ_VALUE_VOID;
    EXPECT_EQ(engine.Call(util_, method, {}, &result), 1);
    if (engine.Show(result) != "<object>") return engine.Show(result);
    const auto* const array = reinterpret_cast<Object*>(result);
    std::string all;
    uint32_t index = 0;
    for (const auto& [at, value] : array->elements) {
      EXPECT_EQ(at, index++) << "no gaps";
      all += Properties(value) + "\n";
    }
    return all;
  }

  const std::vector<zq_Value> dhcp_ = Texts({"Home", "OPEN", "WEP", "WEP40", "0123456789", "2x", "none"});
  const std::vector<zq_Value> static_ = Texts({"10.0.0.2", "255.0.0.0", "1.1.1.1", "2.2.2.2", "10.0.0.1",
                                               "Home", "OPEN", "WEP", "WEP40", "0123456789", "2x", "none"});
};

TEST_F(WirelessMethodsTest, WirelessDhcpIsSet) {
  EXPECT_EQ(Ask("setWirelessNetworkDHCP", dhcp_), "<void>");
  EXPECT_EQ(MethodTraces(), "ZQUtil GUI Call to SetWirelessNetworkDHCP\n");
  EXPECT_EQ(Stored(),
            "dhcp=YES wifi=YES essid=Home authtype=OPEN enctype=WEP "
            "key=0123456789 index=2 wpatype=none");
}

// The engine converts this object to no text.
zq_Value g_noText;
zq_ValueToString g_toText;

class NoTextTest : public WirelessMethodsTest {
 protected:
  NoTextTest() : noText_(BareEngine::Word(engine.NewObject())) {
    g_noText = noText_;
    g_toText = reinterpret_cast<zq_ValueToString>(engine.Table()[ZQ_SLOT_VALUE_TO_STRING]);
    engine.Table()[ZQ_SLOT_VALUE_TO_STRING] =
        reinterpret_cast<uintptr_t>(+[](zq_Value value, uint32_t* scratch) -> const char* {
          return value == g_noText ? nullptr : g_toText(value, scratch);
        });
    Load();
  }

  static std::vector<zq_Value> With(std::vector<zq_Value> arguments, int place, zq_Value value) {
    arguments[static_cast<size_t>(place)] = value;
    return arguments;
  }

  const zq_Value noText_;
};

TEST_F(NoTextTest, WirelessDhcpNamesTheOneArgumentThatIsNone) {
  for (int place = 0; place < 7; ++place) {
    EXPECT_EQ(Ask("setWirelessNetworkDHCP", With(dhcp_, place, noText_)), "<void>");
    EXPECT_EQ(MethodTraces(),
              "ZQUtil GUI Call to SetWirelessNetworkDHCP\nZQUtil SetWirelessNetworkDHCP missing argument " +
                  std::to_string(place) + "\n");
  }
  EXPECT_EQ(Stored(), "");
}

TEST_F(NoTextTest, WirelessStaticNamesTheArgumentThatIsNoneAndAllBeforeIt) {
  for (int place = 0; place < 12; ++place) {
    EXPECT_EQ(Ask("setWirelessNetworkStatic", With(static_, place, noText_)), "<void>");
    EXPECT_EQ(MethodTraces(),
              "ZQUtil GUI Call to SetWirelessNetworkStatic\n" + Missing(place, place == 0 ? 0 : 1));
  }
  EXPECT_EQ(Stored(), "");
}

TEST_F(NoTextTest, WiredStaticAndTheProxyStopInSilence) {
  for (int place = 0; place < 5; ++place) {
    EXPECT_EQ(Ask("setWiredNetworkStatic", With(Texts({"1", "2", "3", "4", "5"}), place, noText_)), "<void>");
    EXPECT_EQ(MethodTraces(), "ZQUtil GUI Call to SetWiredNetworkStatic\n");
  }
  EXPECT_EQ(Ask("setProxy", {noText_}), "<void>");
  EXPECT_EQ(Ask("setProxyEnabled", {noText_}), "<void>");
  EXPECT_EQ(Ask("setFirstTime", {noText_}), "<void>");
  Settle();
  EXPECT_EQ(Stored() + StoredKey("net.proxy") + StoredKey("net.proxyen") + StoredKey("net.firsttime"),
            "<none><none><none>");
}

// One that must be given and is void or null is missing: there are too few then, and no argument is named.
TEST_F(WirelessMethodsTest, TooFewArgumentsNameNone) {
  const auto ask = [&](const char* method, const std::vector<zq_Value>& arguments) {
    EXPECT_EQ(Ask(method, arguments), "<void>");
    return MethodTraces();
  };
  for (const zq_Value missing : {ZQ_VALUE_VOID, ZQ_VALUE_NULL}) {
    for (size_t place = 0; place < 6; ++place) {
      std::vector<zq_Value> arguments = dhcp_;
      arguments[place] = missing;
      EXPECT_EQ(ask("setWirelessNetworkDHCP", arguments), "ZQUtil GUI Call to SetWirelessNetworkDHCP\n")
          << place;
    }
    for (size_t place = 0; place < 11; ++place) {
      std::vector<zq_Value> arguments = static_;
      arguments[place] = missing;
      EXPECT_EQ(ask("setWirelessNetworkStatic", arguments), "ZQUtil GUI Call to SetWirelessNetworkStatic\n")
          << place;
    }
  }
  for (size_t count = 0; count < 6; ++count) {
    EXPECT_EQ(ask("setWirelessNetworkDHCP", {dhcp_.begin(), dhcp_.begin() + static_cast<ptrdiff_t>(count)}),
              "ZQUtil GUI Call to SetWirelessNetworkDHCP\n");
  }
  for (size_t count = 0; count < 11; ++count) {
    EXPECT_EQ(
        ask("setWirelessNetworkStatic", {static_.begin(), static_.begin() + static_cast<ptrdiff_t>(count)}),
        "ZQUtil GUI Call to SetWirelessNetworkStatic\n");
  }
  EXPECT_EQ(Stored(), "");
}

TEST_F(WirelessMethodsTest, TheWpaTypeThatIsMissingIsWhatTheEngineMakesOfVoid) {
  EXPECT_EQ(Ask("setWirelessNetworkDHCP", std::vector<zq_Value>(dhcp_.begin(), dhcp_.begin() + 6)), "<void>");
  EXPECT_EQ(StoredKey("net.wpatype"), "undefined");
  EXPECT_EQ(StoredKey("net.index"), "2");
  StoreKey("net.wpatype", "old");
  Ask("setWirelessNetworkStatic", std::vector<zq_Value>(static_.begin(), static_.begin() + 11));
  EXPECT_EQ(StoredKey("net.wpatype"), "undefined");
  EXPECT_EQ(StoredKey("net.ipaddr"), "10.0.0.2");
  for (const zq_Value missing : {ZQ_VALUE_VOID, ZQ_VALUE_NULL}) {
    StoreKey("net.wpatype", "old");
    std::vector<zq_Value> arguments = static_;
    arguments[11] = missing;
    Ask("setWirelessNetworkStatic", arguments);
    EXPECT_EQ(StoredKey("net.wpatype"), "undefined");
  }
}

TEST_F(WirelessMethodsTest, AnIndexThatIsNoNumberIsNone) {
  for (const char* text : {"x", "", "0", "-3"}) {
    std::vector<zq_Value> arguments = dhcp_;
    arguments[5] = S(text);
    Ask("setWirelessNetworkDHCP", arguments);
    EXPECT_EQ(StoredKey("net.index"), "<none>") << text;
  }
  std::vector<zq_Value> arguments = static_;
  arguments[10] = N(4);
  Ask("setWirelessNetworkStatic", arguments);
  EXPECT_EQ(StoredKey("net.index"), "4") << "an integer is a text, too";
}

TEST_F(WirelessMethodsTest, WirelessStaticIsSetAndComplainsAllTheSame) {
  EXPECT_EQ(Ask("setWirelessNetworkStatic", static_), "<void>");
  EXPECT_EQ(MethodTraces(), "ZQUtil GUI Call to SetWirelessNetworkStatic\n" + Missing(11, 1));
  EXPECT_EQ(Stored(),
            "dhcp=NO wifi=YES essid=Home authtype=OPEN enctype=WEP key=0123456789 "
            "index=2 wpatype=none "
            "ipaddr=10.0.0.2 netmask=255.0.0.0 gateway=10.0.0.1 ns=1.1.1.1,2.2.2.2");
  Ask("setWirelessNetworkStatic", std::vector<zq_Value>(static_.begin(), static_.begin() + 11));
  EXPECT_EQ(MethodTraces(), "ZQUtil GUI Call to SetWirelessNetworkStatic\n" + Missing(11, 1));
}

TEST_F(WirelessMethodsTest, SecurityIsAnObject) {
  EXPECT_EQ(ObjectOf("getWirelessSecurity"),
            "netAuth=OPEN encryption=DISABLED keyType=NOKEY key= index=<int 0>");
  Ask("setWirelessNetworkDHCP", dhcp_);
  ForgetTraces();
  EXPECT_EQ(ObjectOf("getWirelessSecurity"),
            "netAuth=OPEN encryption=WEP keyType=WEP40 key=0123456789 index=<int 2>");
  EXPECT_EQ(MethodTraces(), "ZQUtil GUI Call to GetWirelessSecurity\nZQUtil GetWirelessSecurity Done\n");
}

TEST_F(WirelessMethodsTest, TheCachedListIsTheOneThatWasKept) {
  _ESSIDStruct& wpa = See("Wpa", -12);
  wpa.encrypted = 1;
  wpa.WPAVersion = 1;
  wpa.TKIP = 1;
  EXPECT_EQ(Entries("getCachedESSIDList"),
            "Name=Home Signal=<int 30> Encrypted=<int 0> Connected=<int 0> "
            "AuthType=Disabled EncType=None "
            "WPAType=None\n"
            "Name=Wpa Signal=<int -12> Encrypted=<int 1> Connected=<int 0> "
            "AuthType=WPA-PSK EncType=TKIP "
            "WPAType=WPA1\n");
  EXPECT_EQ(TracesWithoutNews().rfind("ZQUtil GUI Call to GetESSIDList\n", 0), 0U) << TracesWithoutNews();
  EXPECT_NE(TracesWithoutNews().find("=====Returning ESSID "
                                     "Home\nAuthtype=Disabled\nWPAType=None\nEnctype=None\n=====\n"
                                     "=====Returning ESSID "
                                     "Wpa\nAuthtype=WPA-PSK\nWPAType=WPA1\nEnctype=TKIP\n=====\n"),
            std::string::npos)
      << TracesWithoutNews();
  Forget();
  EXPECT_EQ(Entries("getCachedESSIDList"), "") << "an array, empty";
}

TEST_F(WirelessMethodsTest, SecurityIsToldInWords) {
  const auto told = [&](uint8_t encrypted, int32_t version, uint8_t tkip, uint8_t aes) {
    Forget();
    _ESSIDStruct& record = See("x", 0);
    record.encrypted = encrypted;
    record.WPAVersion = version;
    record.TKIP = tkip;
    record.AES = aes;
    const std::string entry = Entries("getCachedESSIDList");
    return entry.substr(entry.find("AuthType"));
  };
  EXPECT_EQ(told(1, 1, 0, 0), "AuthType=WPA-PSK EncType=None WPAType=WPA1\n");
  EXPECT_EQ(told(1, 2, 0, 1), "AuthType=WPA-PSK EncType=AES WPAType=WPA2\n");
  EXPECT_EQ(told(1, 0, 0, 0), "AuthType=WEP EncType=None WPAType=None\n");
  EXPECT_EQ(told(1, 3, 1, 0), "AuthType=WEP EncType=TKIP WPAType=None\n");
  EXPECT_EQ(told(0, 2, 1, 1), "AuthType=Disabled EncType=TKIP+AES WPAType=None\n");
  EXPECT_EQ(told(0, 0, 1, 1), "AuthType=Disabled EncType=TKIP+AES WPAType=None\n");
  EXPECT_EQ(told(7, 2, 9, 9), "AuthType=WPA-PSK EncType=TKIP+AES WPAType=WPA2\n");
}

TEST_F(WirelessMethodsTest, AnEntryWithoutANameHasAnEmptyOne) {
  Forget();
  See(nullptr, 5);
  StoreKey("net.essid", "");
  EXPECT_EQ(Entries("getCachedESSIDList").rfind("Name= Signal=<int 5> ", 0), 0U);
  EXPECT_NE(TracesWithoutNews().find("=====Returning ESSID (NULL)\n"), std::string::npos);
}

TEST_F(WirelessMethodsTest, NamesOfAnyBytesArriveAsTheyAre) {
  Forget();
  See("\xff\xc3(\x01 ", 0);
  EXPECT_EQ(Entries("getCachedESSIDList").rfind("Name=\xff\xc3(\x01  Signal", 0), 0U);
}

TEST_F(WirelessMethodsTest, OnlyTheConfiguredNetworkCanBeConnected) {
  ZQUtil::m_pInstance->network->hardwareType = 2;
  WriteFile(OnThisMachine("/hw/ra0/link.ini"),
            "[link]\nup = yes\nassociated = yes\n[address]\nip = 10.0.0.7\n");
  See("other", 1);
  StoreKey("net.wifi", "yes");
  StoreKey("net.essid", "HOME");
  const std::string entries = Entries("getCachedESSIDList");
  EXPECT_NE(entries.find("Name=Home Signal=<int 30> Encrypted=<int 0> Connected=<int 1>"), std::string::npos)
      << entries << TracesWithoutNews();
  EXPECT_NE(entries.find("Name=other Signal=<int 1> Encrypted=<int 0> Connected=<int 0>"), std::string::npos);
  EXPECT_NE(TracesWithoutNews().find("Connected\nAuthtype=Disabled\n"), std::string::npos);
  StoreKey("net.essid", "nowhere");
  EXPECT_EQ(Entries("getCachedESSIDList").find("Connected=<int 1>"), std::string::npos);
}

TEST_F(WirelessMethodsTest, AnArrayWithoutObjectsIsEmpty) {
  engine.Remove(ZQ_SLOT_NEW_OBJECT);
  Load();
  EXPECT_EQ(Entries("getCachedESSIDList"), "");
  EXPECT_EQ(ObjectOf("getWirelessSecurity"), "<void>");
}

// A radio with these networks in the air and that link, which answers a scan at once.
class RadioTest : public NetworkMethodsTest {
 protected:
  RadioTest() : cells_(ReadFile(OnThisMachine(kCells))), link_(ReadFile(OnThisMachine(kLink))) {
    SetAir("[Home]\nsecurity = wpa2\nlevel = 196\n[Cafe]\nsecurity = open\nlevel = 150\n");
    SetLink("");
    WriteFile(OnThisMachine("/hw/ra0/calls"), "");
  }
  ~RadioTest() override {
    WriteFile(OnThisMachine(kCells), cells_);
    WriteFile(OnThisMachine(kLink), link_);
    std::filesystem::remove(OnThisMachine("/hw/ra0/calls"));
  }

  static void SetAir(const std::string& cells) { WriteFile(OnThisMachine(kCells), cells); }
  // In one step: the driver may be reading it for a scan of the queue.
  static void SetLink(const std::string& joined, const std::string& resultsMs = "0") {
    const std::string place = OnThisMachine(kLink);
    WriteFile(place + ".new", "[link]\nup = yes\n" + joined + "[driver]\nresults_ms = " + resultsMs + "\n");
    std::filesystem::rename(place + ".new", place);
  }
  // From here on no scan of the queue ends, until the next SetLink.
  static void HoldResults() { SetLink("", "600000"); }
  static void Join() {
    SetLink("associated = yes\nessid = Home\n[address]\nip = 10.0.0.7\n");
    StoreKey("net.wifi", "yes");
  }
  // How often a scan was asked for.
  static int Scans() {
    const std::string calls = ReadFile(OnThisMachine("/hw/ra0/calls"));
    int count = 0;
    for (size_t at = calls.find("\nscan:"); at != std::string::npos; at = calls.find("\nscan:", at + 1))
      ++count;
    return count;
  }
  std::string Property() {
    const auto& properties = engine.ClassObject().properties;
    const auto found = properties.find("getessidListener");
    return found != properties.end() ? engine.Show(found->second) : "<none>";
  }
  // The names in the list that a method answers, a comma behind each.
  std::string Names(const std::string& method) {
    zq_Value result = ZQ_VALUE_VOID;
    EXPECT_EQ(engine.Call(util_, method, {}, &result), 1);
    std::string all;
    for (const auto& [index, value] : reinterpret_cast<Object*>(result)->elements) {
      all += engine.Show(reinterpret_cast<Object*>(value)->properties.at("Name")) + ",";
    }
    return all;
  }

 private:
  static constexpr char kCells[] = "/hw/ra0/cells.ini";
  static constexpr char kLink[] = "/hw/ra0/link.ini";
  const std::string cells_;
  const std::string link_;
};

TEST_F(RadioTest, AListIsScannedForAndKept) {
  EXPECT_EQ(Names("getCachedESSIDList"), "");
  EXPECT_EQ(Scans(), 0);
  EXPECT_EQ(Names("getESSIDList"), "Home,Cafe,");
  EXPECT_EQ(Scans(), 1);
  SetAir("[Other]\n");
  EXPECT_EQ(Names("getCachedESSIDList"), "Home,Cafe,") << "as they were";
  EXPECT_EQ(Scans(), 1);
  EXPECT_EQ(Names("getESSIDList"), "Other,");
}

TEST_F(RadioTest, ASetUpBeforeAnyListScansToKnowWhetherItsNetworkIsListed) {
  Ask("setWirelessNetworkDHCP", Texts({"Home", "OPEN", "DISABLED", "NOKEY", "", "0", ""}));
  EXPECT_EQ(StoredKey("net.listed"), "<none>");
  EXPECT_EQ(Scans(), 1);
  Ask("setWirelessNetworkDHCP", Texts({"Hidden", "OPEN", "DISABLED", "NOKEY", "", "0", ""}));
  EXPECT_EQ(StoredKey("net.listed"), "FALSE");
  EXPECT_EQ(Scans(), 1) << "the list is there";
}

TEST_F(RadioTest, TheCurrentNetworkBearsItsNameAlsoWhenItIsNotJoined) {
  EXPECT_EQ(ObjectOf("getESSID"), "Name= Signal=<int 0> Encrypted=<int 0> Connected=<int 0>");
  StoreKey("net.essid", "Home");
  ForgetTraces();
  EXPECT_EQ(ObjectOf("getESSID"), "Name=Home Signal=<int 0> Encrypted=<int 0> Connected=<int 0>");
  EXPECT_EQ(MethodTraces(),
            "ZQUtil GUI Call to GetESSID\nZQUtil GetESSID testing Home (Home)\n"
            "ZQUtil GetESSID returning Home (Strength 0)\n");
  Join();
  EXPECT_EQ(ObjectOf("getESSID"), "Name=Home Signal=<int 54> Encrypted=<int 0> Connected=<int 1>");
}

TEST_F(RadioTest, WithoutAConfiguredNetworkTheCurrentOneIsEmptyWhateverTheRadioHasJoined) {
  Join();
  ForgetTraces();
  EXPECT_EQ(ObjectOf("getESSID"), "Name= Signal=<int 0> Encrypted=<int 0> Connected=<int 0>");
  EXPECT_EQ(MethodTraces(), "ZQUtil GUI Call to GetESSID\n");
}

TEST_F(RadioTest, ACurrentNetworkWithoutANameOrAStoreIsEmpty) {
  StoreKey("net.essid", "Home");
  const ClosedKeyStore closed;
  ForgetTraces();
  EXPECT_EQ(ObjectOf("getESSID"), "Name= Signal=<int 0> Encrypted=<int 0> Connected=<int 0>");
  EXPECT_EQ(MethodTraces(), "ZQUtil GUI Call to GetESSID\n");
}

TEST_F(RadioTest, ABackgroundScanTellsItsListenerOnceAndTheListIsThere) {
  Object& listener = engine.NewObject();
  EXPECT_EQ(Ask("backgroundGetESSIDList", {BareEngine::Word(listener)}), "<void>");
  EXPECT_EQ(TracesWithoutNews().rfind(
                "ZQUtil GUI Call to BackgroundGetESSIDList\nZQUtil Clearing old listener\nZQUtil Messaging "
                "thread to get SSIDs " +
                    std::to_string(ZQUtil::m_pInstance->Handle()) + "\n",
                0),
            0U)
      << TracesWithoutNews();
  Settle();
  EXPECT_EQ(engine.TakeCalls(), "onSSIDList()");
  EXPECT_EQ(Property(), "<null>");
  EXPECT_EQ(ZQUtil::m_pInstance->getessidListener, nullptr);
  EXPECT_EQ(Names("getCachedESSIDList"), "Home,Cafe,");
  EXPECT_EQ(Scans(), 1);
}

TEST_F(RadioTest, OfBackgroundScansInQuickSuccessionTheLastListenerHearsTheFirstResultAndNobodyTheNext) {
  HoldResults();
  for (int i = 0; i < 3; ++i) {
    Object& listener = engine.NewObject();
    Ask("backgroundGetESSIDList", {BareEngine::Word(listener)});
    EXPECT_EQ(Property(), "<object>");
  }
  SetLink("");
  Settle();
  EXPECT_EQ(engine.TakeCalls(), "onSSIDList()");
  EXPECT_EQ(Scans(), 3);
}

TEST_F(RadioTest, WhileAScanIsUnderWayTheCachedListIsEmptyAndThereAtOnce) {
  EXPECT_EQ(Names("getESSIDList"), "Home,Cafe,");
  HoldResults();
  PostToQueue(kMsgBackgroundScan, 0);
  while (Scans() < 2) std::this_thread::yield();
  EXPECT_EQ(Names("getCachedESSIDList"), "");
  SetLink("");
  Settle();
  EXPECT_EQ(Names("getCachedESSIDList"), "Home,Cafe,");
}

// A scan of the queue thread that ends when `other` returns, which runs on a thread of its own.
class SlowRadioTest : public RadioTest {
 protected:
  void WhileTheQueueScans(const std::function<void()>& scriptCall, const std::function<void()>& other) {
    HoldResults();
    PostToQueue(kMsgBackgroundScan, 0);
    AwaitScans(1);
    ForgetTraces();
    std::thread thread([&other] {
      other();
      SetLink("");
    });
    scriptCall();
    thread.join();
    Settle();
  }
  static void AwaitScans(int count) {
    while (Scans() < count) std::this_thread::yield();
  }
  void AwaitTrace(const char* text) const {
    while (!trace.Has(text)) std::this_thread::yield();
  }
  // Whether it is traced within a tenth of a second.
  bool IsTracedSoon(const char* text) const {
    for (int i = 0; i < 100 && !trace.Has(text); ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return trace.Has(text);
  }
};

TEST_F(SlowRadioTest, AListAskedForWhileAScanIsUnderWayIsThatOfTheNextScan) {
  WhileTheQueueScans([this] { EXPECT_EQ(Names("getESSIDList"), "Home,Cafe,"); },
                     [this] { AwaitTrace("ZQUtil GUI Call to GetESSIDList"); });
  EXPECT_EQ(Scans(), 2);
}

TEST_F(SlowRadioTest, ASetUpLooksItsNetworkUpWhenTheScanUnderWayHasEnded) {
  const auto setUp = [this](const char* method, const std::vector<zq_Value>& arguments, const char* begins) {
    WriteFile(OnThisMachine("/hw/ra0/calls"), "");
    StoreKey("net.listed", "old");
    WhileTheQueueScans([&] { Ask(method, arguments); },
                       [&] { EXPECT_FALSE(IsTracedSoon(begins)) << "it waits"; });
    EXPECT_TRUE(trace.Has(begins));
    EXPECT_EQ(StoredKey("net.listed"), "<none>");
    EXPECT_EQ(Scans(), 1);
  };
  setUp("setWirelessNetworkDHCP", Texts({"Home", "OPEN", "DISABLED", "NOKEY", "", "0", ""}),
        "ZQUtil Writing new values for Wireless DHCP Network");
  setUp("setWirelessNetworkStatic",
        Texts({"1", "2", "3", "4", "5", "Home", "OPEN", "DISABLED", "NOKEY", "", "0", ""}),
        "ZQUtil Writing new values for Wireless Static Network");
}

TEST_F(SlowRadioTest, TheCachedListIsThereAtOnceWhileASetUpScans) {
  for (const auto& [method, arguments] :
       {std::pair("setWirelessNetworkDHCP", Texts({"Home", "OPEN", "DISABLED", "NOKEY", "", "0", ""})),
        std::pair("setWirelessNetworkStatic",
                  Texts({"1", "2", "3", "4", "5", "Home", "OPEN", "DISABLED", "NOKEY", "", "0", ""}))}) {
    ZQUtil::m_pInstance->network->EmptyESSIDList();
    WriteFile(OnThisMachine("/hw/ra0/calls"), "");
    HoldResults();
    std::thread reader([this] {
      AwaitScans(1);
      EXPECT_EQ(Names("getCachedESSIDList"), "");
      SetLink("");
    });
    Ask(method, arguments);
    reader.join();
    EXPECT_EQ(Names("getCachedESSIDList"), "Home,Cafe,");
  }
}

TEST_F(RadioTest, ScriptsReadAndScanWhileTheQueueScans) {
  std::string air;
  for (int i = 0; i < 60; ++i) air += "[Network " + std::to_string(i) + "]\n";
  SetAir(air);
  std::string all;
  for (int i = 0; i < 60; ++i) all += "Network " + std::to_string(i) + ",";
  constexpr int kScans = 4;
  for (int i = 0; i < kScans; ++i) PostToQueue(kMsgBackgroundScan, 0);
  while (zq_MsgQPending(ZQUtil::m_pInstance->Handle()) > 0) {
    const std::string names = Names("getCachedESSIDList");
    EXPECT_TRUE(names.empty() || names == all) << names;
  }
  EXPECT_EQ(Names("getESSIDList"), all);
  PostToQueue(kMsgBackgroundScan, 0);
  Ask("setWirelessNetworkDHCP", Texts({"Network 59", "OPEN", "DISABLED", "NOKEY", "", "0", ""}));
  EXPECT_EQ(StoredKey("net.listed"), "<none>");
  Settle();
  EXPECT_EQ(Names("getCachedESSIDList"), all);
}

TEST_F(RadioTest, AListenerThatIsForgottenMeanwhileHearsNothing) {
  HoldResults();
  Ask("backgroundGetESSIDList", {BareEngine::Word(engine.NewObject())});
  Ask("backgroundGetESSIDList");
  SetLink("");
  Settle();
  EXPECT_EQ(engine.TakeCalls(), "");
  EXPECT_EQ(Scans(), 1);
}

TEST_F(RadioTest, WhatIsNoListenerForgetsTheOneThatWaits) {
  const std::vector<std::pair<std::vector<zq_Value>, std::string>> calls = {
      {{}, "ZQUtil argument miscount, clearing\n"},
      {{S("a"), S("b")}, "ZQUtil argument miscount, clearing\n"},
      {{ZQ_VALUE_VOID}, "ZQUtil void argument, clearing\n"},
      {{ZQ_VALUE_NULL}, "ZQUtil NULL argument, clearing\n"}};
  for (const auto& [arguments, reason] : calls) {
    ZQUtil::m_pInstance->getessidListener = &engine.NewObject();
    EXPECT_EQ(Ask("backgroundGetESSIDList", arguments), "<void>");
    EXPECT_EQ(TracesWithoutNews(), "ZQUtil GUI Call to BackgroundGetESSIDList\n" + reason);
    EXPECT_EQ(Property(), "<null>");
    EXPECT_EQ(ZQUtil::m_pInstance->getessidListener, nullptr);
  }
  EXPECT_EQ(Scans(), 0);
}

TEST_F(RadioTest, WhatIsNoObjectFailsAndChangesNothing) {
  Object& listener = engine.NewObject();
  ZQUtil::m_pInstance->getessidListener = &listener;
  EXPECT_EQ(Ask("backgroundGetESSIDList", {S("text")}), "<returned 0>");
  EXPECT_EQ(TracesWithoutNews(), "ZQUtil GUI Call to BackgroundGetESSIDList\nZQUtil Clearing old listener\n");
  EXPECT_EQ(ZQUtil::m_pInstance->getessidListener, &listener);
  EXPECT_EQ(Scans(), 0);
}

}  // namespace
