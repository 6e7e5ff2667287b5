// Version and about information: what scripts hear, from which sources, and what happens when the module ends meanwhile.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <mutex>
#include <semaphore>
#include <thread>

#include "OwnedText.h"
#include "ZQDateTime.h"
#include "ZQNetwork.h"
#include "ZQUtilAbout.h"
#include "ZQUtilMethodTable.h"
#include "module_fixture.h"
#include "no_more_threads.h"
#include "refused_memory.h"
#include "zq_system.h"
#include "zq_thread.h"

namespace fs = std::filesystem;

// The sources of the summary's texts, each of which says its own name when the test wants them to, but for one that has
// nothing to say.
static std::atomic<bool> g_ownNames = false;
static std::string g_silent;
#define SOURCE(symbol)                                                           \
  extern "C" __attribute__((visibility("default"))) char* symbol(void* self) {   \
    if (g_ownNames && g_silent == #symbol) return nullptr;                       \
    if (g_ownNames) return zq__newString(#symbol, "test", __LINE__);             \
    return reinterpret_cast<decltype(&symbol)>(dlsym(RTLD_NEXT, #symbol))(self); \
  }
SOURCE(_ZN9ZQNetwork10getMACAddrEv)
SOURCE(_ZN9ZQNetwork12getCurrentIPEv)
SOURCE(_ZN9ZQNetwork10getGatewayEv)
SOURCE(_ZN9ZQNetwork17getCurrentNetmaskEv)
SOURCE(_ZN9ZQNetwork13getPrimaryDNSEv)
SOURCE(_ZN9ZQNetwork15getSecondaryDNSEv)
SOURCE(_ZN10ZQDateTime9getTZDescEv)
SOURCE(_ZN10ZQDateTime19getPrimaryNTPServerEv)
SOURCE(_ZN10ZQDateTime21getSecondaryNTPServerEv)

namespace {

constexpr char kBoard[] = "/proc/boardrev";
constexpr char kFirmware[] = "/etc/firmware.ver";
constexpr char kSoftware[] = "/etc/software.ver";
constexpr char kRegistering[] = "ZQUtil Registering Software About Listener";

// A listener's call as the host sees it.
struct Call {
  void* listener;
  std::string method;
  zq_Value argument;
};
std::vector<Call> g_calls;
std::mutex g_keeping;
int32_t KeepCall(void* object, const char* name, uint32_t argc, zq_Value* argv) {
  const std::lock_guard lock(g_keeping);
  EXPECT_EQ(argc, 1U);
  g_calls.push_back({object, name, argv[0]});
  return 1;
}

// A host whose door a thread has to wait at.
std::counting_semaphore<2>& g_door = *new std::counting_semaphore<2>(0);
void WaitAtTheDoor(void*) {
  g_door.acquire();
}

std::string Platform() {
  char text[1024] = {};
  zqOS_GetVersion(text, sizeof text);
  return text;
}

class AboutTest : public ModuleTest {
 protected:
  AboutTest() {
    g_calls.clear();
    g_ownNames = false;
    g_silent.clear();
    engine.Table()[ZQ_SLOT_CALL_METHOD_WITH_ARGS] = reinterpret_cast<uintptr_t>(KeepCall);
    Restore();
    WriteFile(kFirmware, "2.1.7\n");
    WriteFile(kSoftware, "R12\n");
  }
  ~AboutTest() override {
    AwaitThreads();
    Restore();
  }

  static void Restore() {
    for (const char* const file : {kFirmware, kSoftware, kBoard}) fs::remove_all(OnThisMachine(file));
    WriteFile(OnThisMachine(kBoard), "3\n");
    WriteFile(OnThisMachine(kFirmware), "1.0.0\n");
    WriteFile(OnThisMachine(kSoftware), "1.0.0\n");
  }
  static void AwaitThreads() { ASSERT_TRUE(zq_ThreadAwaitEnd(threadAboutDialog, 60000)); }

  Object& Util() {
    if (util_ == nullptr) {
      util_ = &New();
      Settle();
    }
    return *util_;
  }
  // "Name=value;" of each property, in the order in which they were set.
  std::string Properties(zq_Value word) {
    if (engine.Show(word) != "<object>") return engine.Show(word);
    Object& object = *reinterpret_cast<Object*>(word);
    std::string all;
    for (const std::string& name : object.order) {
      const zq_Value value = object.properties[name];
      all += name + "=" + engine.Show(value) + ";";
      if (engine.LengthGiven(value) != 0) {
        EXPECT_EQ(engine.LengthGiven(value), engine.Show(value).size() + 1) << name;
      }
    }
    return all;
  }
  std::string Version() {
    zq_Value result = ZQ_VALUE_VOID;
    EXPECT_EQ(ZQUtil_GetVersion(nullptr, 0, nullptr, &result), 1);
    return Properties(result);
  }
  // What the listener of one registration hears.
  std::string Summary() {
    Object& util = Util();
    g_calls.clear();
    EXPECT_EQ(engine.Answer(util, "registerAboutListener", {BareEngine::Word(engine.NewObject())}), "<void>");
    AwaitThreads();
    EXPECT_EQ(g_calls.size(), 1U);
    return g_calls.empty() ? "" : Properties(g_calls[0].argument);
  }
  static std::string Value(const std::string& properties, const std::string& name) {
    const size_t start = (";" + properties).find(";" + name + "=");
    if (start == std::string::npos) return "<none>";
    const size_t value = start + name.size() + 1;
    return properties.substr(value, properties.find(';', value) - value);
  }
  static std::string Shown(char* text) {
    const OwnedText owned(text);
    return owned != nullptr ? owned.get() : "<null>";
  }

 private:
  Object* util_ = nullptr;
};

TEST_F(AboutTest, VersionsAreAnsweredAtOnceAndWithoutASingleton) {
  Load();
  ForgetTraces();
  EXPECT_EQ(Version(), "Firmware=2.1.7 (boardrev: 3);Software=R12 (" + Platform() + ");");
  EXPECT_EQ(Traces(),
            "ZQUtil read /proc.boardrev: 3\nZQUtil Firmware Version 2.1.7 (boardrev: 3)\n"
            "ZQUtil Software Version R12 (" +
                Platform() + ")\n");
  EXPECT_EQ(ZQUtil::m_pInstance, nullptr);
  EXPECT_EQ(engine.Answer(engine.NewObject(), "GetVersion"), "<object>")
      << "also on an object of another class";
}

TEST_F(AboutTest, ADeviceIdentityIsInTheSummaryAlone) {
  WriteFile("zqutil.ini", "[config]\ndeviceid=42\n");
  const std::string summary = Summary();
  EXPECT_EQ(Value(summary, "Firmware"), "2.1.7 (boardrev: 3) [ID=42]");
  EXPECT_EQ(Value(Version(), "Firmware"), "2.1.7 (boardrev: 3)");
}

TEST_F(AboutTest, EachVersionSourceMayBeMissingEmptyOrLong) {
  Load();
  fs::remove(OnThisMachine(kBoard));
  ForgetTraces();
  EXPECT_EQ(Value(Version(), "Firmware"), "2.1.7");
  EXPECT_EQ(Traces().find("boardrev"), std::string::npos);
  WriteFile(OnThisMachine(kBoard), "");
  ForgetTraces();
  EXPECT_EQ(Value(Version(), "Firmware"), "2.1.7");
  EXPECT_EQ(Traces().substr(0, 38), "ZQUtil /proc.boardrev has no content\nZ");
  WriteFile(OnThisMachine(kBoard), "5\tof 7 \r\nand more\n");
  ForgetTraces();
  EXPECT_EQ(Value(Version(), "Firmware"), "2.1.7 (boardrev: 5)");
  EXPECT_EQ(Traces().find("ZQUtil read /proc.boardrev: 5\tof 7 \r\nZQUtil Firmware"), 0U) << "the whole line";
  WriteFile(OnThisMachine(kBoard), std::string(254, '0') + "7");
  EXPECT_EQ(Value(Version(), "Firmware"), "2.1.7 (boardrev: 7)");
  WriteFile(OnThisMachine(kBoard), std::string(255, '0') + "7");
  EXPECT_EQ(Value(Version(), "Firmware"), "2.1.7") << "255 bytes are read";
  WriteFile(OnThisMachine(kBoard), "99999999999999999999");
  EXPECT_EQ(Value(Version(), "Firmware"), "2.1.7 (boardrev: 2147483647)");
  for (const char* const none : {"-3", "x", "\n5"}) {
    WriteFile(OnThisMachine(kBoard), none);
    EXPECT_EQ(Value(Version(), "Firmware"), "2.1.7") << none;
  }

  WriteFile(kFirmware, "2.1.7\tand more\n");
  EXPECT_EQ(Value(Version(), "Firmware"), "2.1.7");
  WriteFile(kFirmware, std::string(1 << 20, 'v') + "\nrest");
  EXPECT_EQ(Value(Version(), "Firmware"), std::string(1 << 20, 'v'));
  WriteFile(kFirmware, "");
  EXPECT_EQ(Value(Version(), "Firmware"), "");
  fs::remove(kFirmware);
  WriteFile(OnThisMachine(kBoard), "3");
  EXPECT_EQ(Value(Version(), "Firmware"), "") << "without a board either";
  fs::create_directory(kFirmware);
  EXPECT_EQ(Value(Version(), "Firmware"), "");

  WriteFile(kSoftware, std::string("R12\0R13", 7));
  EXPECT_EQ(Value(Version(), "Software"), "R12 (" + Platform() + ")");
  WriteFile(kSoftware, "");
  EXPECT_EQ(Value(Version(), "Software"), Platform());
  fs::remove(kSoftware);
  EXPECT_EQ(Value(Version(), "Software"), Platform());
}

TEST_F(AboutTest, VersionsWithoutObjectsAreNull) {
  engine.Remove(ZQ_SLOT_NEW_OBJECT);
  Load();
  ForgetTraces();
  EXPECT_EQ(Version(), "<null>");
  engine.Table()[ZQ_SLOT_NEW_OBJECT] = reinterpret_cast<uintptr_t>(+[]() -> void* { return nullptr; });
  Load();
  ForgetTraces();
  EXPECT_EQ(Version(), "<null>");
  EXPECT_EQ(Traces(), "") << "no source is read";
}

TEST_F(AboutTest, AWiredDevicesSummaryHasEveryPropertyInOrder) {
  Util();
  StoreKey("net.wifi", "no");
  StoreKey("net.priNTP", "one.example");
  StoreKey("net.secNTP", "two.example");
  StoreKey("sys.tz", "/usr/share/zoneinfo/GMT");
  ZQNetwork& network = *ZQUtil::m_pInstance->network;
  const std::string expected =
      "MACAddr=" + Shown(network.getMACAddr()) + ";IPAddr=" + Shown(network.getCurrentIP()) +
      ";IsWireless=False;Network=Wired;SignalStrength=<int 0>;Gateway=" + Shown(network.getGateway()) +
      ";Subnet=" + Shown(network.getCurrentNetmask()) + ";DNS1=" + Shown(network.getPrimaryDNS()) +
      ";DNS2=" + Shown(network.getSecondaryDNS()) +
      ";Timezone=(GMT+00:00) Greenwich Mean Time: Dublin, Edinburgh, Lisbon, London;UseNTP=True;"
      "NTP1=one.example;NTP2=two.example;Firmware=2.1.7 (boardrev: 3);Software=R12 (" +
      Platform() + ");";
  EXPECT_EQ(Summary(), expected);
  EXPECT_EQ(g_calls[0].method, "onResult");
  EXPECT_NE(Value(expected, "MACAddr"), "");
}

TEST_F(AboutTest, AWirelessDevicesSummaryNamesItsNetworkAndItsStrength) {
  StoreKey("net.wifi", "yes");
  StoreKey("net.essid", "Home");
  Util();
  ZQNetwork& network = *ZQUtil::m_pInstance->network;
  _ESSIDStruct* const record = network.GetESSIDInfo("Home");
  const std::string strength = "<int " + std::to_string(record->strength) + ">";
  zq__free(record->ESSID, "test", __LINE__);
  zq__free(record, "test", __LINE__);
  const std::string summary = Summary();
  EXPECT_EQ(Value(summary, "IsWireless"), "True");
  EXPECT_EQ(Value(summary, "Network"), "Home");
  EXPECT_EQ(Value(summary, "SignalStrength"), strength);
}

TEST_F(AboutTest, AWirelessDeviceWithoutANetworkHasNoNameAndNoStrengthWhateverTheRadioHasJoined) {
  const std::string link = OnThisMachine("/hw/ra0/link.ini");
  const std::string before = ReadFile(link);
  WriteFile(link, "[link]\nup = yes\nassociated = yes\nlevel = 196\n[address]\nip = 10.0.0.7\n");
  StoreKey("net.wifi", "yes");
  const std::string summary = Summary();
  WriteFile(link, before);
  EXPECT_EQ(Value(summary, "IPAddr"), "10.0.0.7");
  EXPECT_EQ(Value(summary, "Network"), "");
  EXPECT_EQ(Value(summary, "SignalStrength"), "<int 0>");
}

TEST_F(AboutTest, AClockThatNoServerSetsHasNoServers) {
  StoreKey("net.ntpenabled", "no");
  StoreKey("net.priNTP", "one.example");
  const std::string summary = Summary();
  EXPECT_EQ(Value(summary, "UseNTP") + Value(summary, "NTP1") + Value(summary, "NTP2"), "False");
}

TEST_F(AboutTest, AKeyStoreThatCannotBeOpenedLeavesTheRest) {
  Util();
  const ClosedKeyStore closed;
  const std::string summary = Summary();
  EXPECT_EQ(Value(summary, "IsWireless") + Value(summary, "UseNTP"), "FalseFalse");
  EXPECT_EQ(Value(summary, "Timezone"), "(GMT-05:00) Eastern Time (US & Canada)");
  EXPECT_EQ(Value(summary, "Firmware"), "2.1.7 (boardrev: 3)");
}

TEST_F(AboutTest, ASourceWithNothingToSayLeavesItsOwnPropertyEmpty) {
  const std::pair<const char*, const char*> sources[] = {
      {"_ZN9ZQNetwork10getMACAddrEv", "MACAddr"},          {"_ZN9ZQNetwork12getCurrentIPEv", "IPAddr"},
      {"_ZN9ZQNetwork10getGatewayEv", "Gateway"},          {"_ZN9ZQNetwork17getCurrentNetmaskEv", "Subnet"},
      {"_ZN9ZQNetwork13getPrimaryDNSEv", "DNS1"},          {"_ZN9ZQNetwork15getSecondaryDNSEv", "DNS2"},
      {"_ZN10ZQDateTime9getTZDescEv", "Timezone"},         {"_ZN10ZQDateTime19getPrimaryNTPServerEv", "NTP1"},
      {"_ZN10ZQDateTime21getSecondaryNTPServerEv", "NTP2"}};
  Util();
  g_ownNames = true;
  const std::string whole = Summary();
  for (const auto& [source, property] : sources) {
    const std::string text = std::string(property) + "=" + source + ";";
    ASSERT_NE(whole.find(text), std::string::npos) << whole;
    std::string expected = whole;
    expected.replace(expected.find(text), text.size(), std::string(property) + "=;");
    g_silent = source;
    EXPECT_EQ(Summary(), expected) << property;
  }
  g_ownNames = false;
}

// Enough to read the firmware's file, not to keep its line.
TEST_F(AboutTest, MemoryThatRunsOutLeavesNullForTheListener) {
  constexpr size_t kLong = 1234567;
  Util();
  WriteFile(kFirmware, std::string(kLong, 'v'));
  {
    const RefusedMemory refused(kLong + 1, kLong + 1);
    EXPECT_EQ(Summary(), "<null>");
    EXPECT_EQ(Version(), "<null>");
  }
  EXPECT_EQ(Traces().substr(Traces().find("ZQUtil About Dialog Thread has")),
            "ZQUtil About Dialog Thread has no memory\nZQUtil About Dialog Thread Messaging Client\n"
            "ZQUtil About Dialog Thread Freeing Memory\nZQUtil About Dialog Thread Exiting\n"
            "ZQUtil read /proc.boardrev: 3\n");
  EXPECT_NE(Summary(), "<null>") << "the next one is told all";
}

TEST_F(AboutTest, TheListenerIsKeptAliveAfterItWasTaken) {
  static TraceCapture* traces;
  static bool said;
  traces = &trace;
  static const auto setProperty = reinterpret_cast<zq_SetProperty>(engine.Table()[ZQ_SLOT_SET_PROPERTY]);
  engine.Table()[ZQ_SLOT_SET_PROPERTY] =
      reinterpret_cast<uintptr_t>(+[](void* object, const char* name, zq_Value* value) -> int32_t {
        if (name == std::string("AboutListener")) {
          EXPECT_NE(ZQUtil::m_pInstance->aboutListener, nullptr);
          said = traces->Has("ZQUtil Registering Software About Listener calling setmember");
        }
        return setProperty(object, name, value);
      });
  Summary();
  EXPECT_TRUE(said);
}

TEST_F(AboutTest, TheThreadTracesItsStepsAroundTheSources) {
  Util();
  ForgetTraces();
  Summary();
  const std::string traces = Traces();
  size_t at = 0;
  for (const char* const step :
       {"ZQUtil Registering Software About Listener\n",
        "ZQUtil Registering Software About Listener valid argument\n",
        "ZQUtil Registering Software About Listener calling setmember\n",
        "ZQUtil Registering Software About Listenerstarting thread\n", "ZQUtil About Dialog Thread Running\n",
        "ZQUtil returning TZDesc ", "ZQUtil About Dialog Thread Constructing Response Object\n",
        "ZQUtil read /proc.boardrev: 3\nZQUtil Firmware Version ", "ZQUtil Software Version ",
        "ZQUtil About Dialog Thread Messaging Client\nZQUtil About Dialog Thread Freeing Memory\n"
        "ZQUtil About Dialog Thread Exiting\n"}) {
    const size_t found = traces.find(step, at);
    ASSERT_NE(found, std::string::npos) << step << "in\n" << traces;
    at = found + 1;
  }
}

TEST_F(AboutTest, TheListenerIsKeptAliveAndStaysRegistered) {
  Object& listener = engine.NewObject();
  engine.Answer(Util(), "registerAboutListener", {BareEngine::Word(listener)});
  AwaitThreads();
  EXPECT_EQ(engine.ClassObject().properties["AboutListener"], BareEngine::Word(listener));
  EXPECT_EQ(ZQUtil::m_pInstance->aboutListener, &listener);
  EXPECT_EQ(g_calls[0].listener, &listener);
}

TEST_F(AboutTest, ACallWithoutOneListenerClearsTheOneThereWas) {
  const std::pair<std::vector<zq_Value>, std::string> rows[] = {
      {{}, " Not Enough Arguments\n"},
      {{S("a"), S("b")}, " Not Enough Arguments\n"},
      {{ZQ_VALUE_VOID, ZQ_VALUE_VOID}, " Not Enough Arguments\n"},
      {{ZQ_VALUE_VOID}, " void argument\n"},
      {{ZQ_VALUE_NULL}, " null argument\n"}};
  for (const auto& [arguments, text] : rows) {
    Summary();
    g_calls.clear();
    ForgetTraces();
    EXPECT_EQ(engine.Call(Util(), "registerAboutListener", arguments, nullptr), 1);
    EXPECT_EQ(Traces(), kRegistering + std::string("\n") + kRegistering + text);
    EXPECT_EQ(ZQUtil::m_pInstance->aboutListener, nullptr);
    EXPECT_EQ(engine.ClassObject().properties["AboutListener"], ZQ_VALUE_NULL);
    AwaitThreads();
    EXPECT_EQ(g_calls.size(), 0U);
  }
}

TEST_F(AboutTest, WhatIsNoObjectIsRefused) {
  Object& listener = engine.NewObject();
  engine.Answer(Util(), "registerAboutListener", {BareEngine::Word(listener)});
  AwaitThreads();
  ForgetTraces();
  EXPECT_EQ(engine.Call(Util(), "registerAboutListener", {N(7)}, nullptr), 0);
  EXPECT_EQ(Traces(), kRegistering + std::string("\n") + kRegistering + " valid argument\n");
  EXPECT_EQ(ZQUtil::m_pInstance->aboutListener, &listener);
}

TEST_F(AboutTest, TwoRegistrationsInARowBothTellTheLastListener) {
  engine.Table()[ZQ_SLOT_BEGIN_REQUEST] = reinterpret_cast<uintptr_t>(WaitAtTheDoor);
  Object& first = engine.NewObject();
  Object& second = engine.NewObject();
  engine.Answer(Util(), "registerAboutListener", {BareEngine::Word(first)});
  engine.Answer(Util(), "registerAboutListener", {BareEngine::Word(second)});
  g_door.release(2);
  AwaitThreads();
  ASSERT_EQ(g_calls.size(), 2U);
  EXPECT_EQ(g_calls[0].listener, &second);
  EXPECT_EQ(g_calls[1].listener, &second);
  EXPECT_NE(g_calls[0].argument, g_calls[1].argument);
}

TEST_F(AboutTest, AListenerClearedMeanwhileHearsNothing) {
  engine.Table()[ZQ_SLOT_BEGIN_REQUEST] = reinterpret_cast<uintptr_t>(WaitAtTheDoor);
  engine.Answer(Util(), "registerAboutListener", {BareEngine::Word(engine.NewObject())});
  engine.Answer(Util(), "registerAboutListener");
  g_door.release();
  AwaitThreads();
  EXPECT_EQ(g_calls.size(), 0U);
  EXPECT_TRUE(trace.Has("ZQUtil About Dialog Thread Messaging Client"));
}

TEST_F(AboutTest, ASystemWithoutAThreadTellsNobody) {
  Util();
  const NoMoreThreads none;
  EXPECT_EQ(engine.Call(Util(), "registerAboutListener", {BareEngine::Word(engine.NewObject())}, nullptr), 1);
  AwaitThreads();
  EXPECT_FALSE(trace.Has("ZQUtil About Dialog Thread Running"));
}

TEST_F(AboutTest, WithoutObjectsTheListenerHearsNull) {
  engine.Remove(ZQ_SLOT_NEW_OBJECT);
  EXPECT_EQ(Summary(), "<null>");
}

TEST_F(AboutTest, WithoutTheOtherServicesTheThreadEnds) {
  for (const zq_EngineSlot slot : {ZQ_SLOT_CALL_METHOD_WITH_ARGS, ZQ_SLOT_NEW_STRING, ZQ_SLOT_SET_PROPERTY,
                                   ZQ_SLOT_BEGIN_REQUEST, ZQ_SLOT_END_REQUEST}) {
    const uintptr_t service = std::exchange(engine.Table()[slot], 0);
    Load();
    Object& util = New();
    g_calls.clear();
    engine.Answer(util, "registerAboutListener", {BareEngine::Word(engine.NewObject())});
    AwaitThreads();
    EXPECT_EQ(g_calls.size(), slot == ZQ_SLOT_CALL_METHOD_WITH_ARGS ? 0U : 1U);
    Drop(util);
    engine.Table()[slot] = service;
  }
}

TEST_F(AboutTest, WithoutASingletonOrAPartOfItTheThreadOnlyComesAndGoes) {
  Util();
  engine.TakeCalls();
  const std::string coming = "ZQUtil About Dialog Thread Running\nZQUtil About Dialog Thread Exiting\n";
  const auto run = [&](void* singleton) {
    ForgetTraces();
    EXPECT_EQ(threadAboutDialog(singleton), 0);
    return Traces();
  };
  ZQUtil& singleton = *ZQUtil::m_pInstance;
  EXPECT_EQ(run(nullptr), coming);
  ZQNetwork* const network = std::exchange(singleton.network, nullptr);
  EXPECT_EQ(run(&singleton), coming);
  singleton.network = network;
  ZQDateTime* const dateTime = std::exchange(singleton.dateTime, nullptr);
  EXPECT_EQ(run(&singleton), coming);
  singleton.dateTime = dateTime;
}

TEST_F(AboutTest, AModuleThatEndsBeforeTheThreadBeginsLeavesItNothingToDo) {
  engine.Table()[ZQ_SLOT_BEGIN_REQUEST] = reinterpret_cast<uintptr_t>(WaitAtTheDoor);
  Object& util = Util();
  engine.Answer(util, "registerAboutListener", {BareEngine::Word(engine.NewObject())});
  while (!trace.Has("ZQUtil About Dialog Thread Running")) std::this_thread::yield();
  Drop(util);
  EXPECT_EQ(ZQUtil::m_pInstance, nullptr);
  ForgetTraces();
  g_door.release();
  AwaitThreads();
  EXPECT_EQ(Traces(), "ZQUtil About Dialog Thread Exiting\n");
  EXPECT_EQ(g_calls.size(), 0U);
}

TEST_F(AboutTest, RegistrationsAndEndsInAStorm) {
  for (int i = 0; i < 60; ++i) {
    Object& util = New();
    for (int j = 0; j < 3; ++j) {
      engine.Answer(util, "registerAboutListener", {BareEngine::Word(engine.NewObject())});
    }
    if (i % 2 == 0) std::this_thread::yield();
    Drop(util);
    if (i % 5 == 0) Unload();
  }
  AwaitThreads();
}

}  // namespace
