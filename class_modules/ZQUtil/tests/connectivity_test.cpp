// The connectivity monitor on the module's own timers: what a listener hears, at which second.
#include <cstdio>

#include "ConnectivityStep.h"
#include "ZQNetwork.h"
#include "ZQNetworkRestart.h"
#include "ZQSoftwareUpdate.h"
#include "module_fixture.h"
#include "network_facts.h"
#include "zq_timer.h"

namespace {

using std::chrono::milliseconds;

ManualClock* g_clock = nullptr;
std::chrono::nanoseconds g_start;
std::mutex g_mutex;
std::string g_events;

void Note(const std::string& event) {
  const std::lock_guard lock(g_mutex);
  const auto time = std::chrono::duration_cast<milliseconds>(g_clock->Elapsed() - g_start).count();
  char stamp[32];
  std::snprintf(stamp, sizeof stamp, "%lld.%lld ", static_cast<long long>(time / 1000),
                static_cast<long long>(time % 1000 / 100));
  g_events += (g_events.empty() ? "" : ", ") + std::string(stamp) + event;
}

// What a listener does when it is called by that name, once.
std::string g_reactsTo;
void (*g_reaction)() = nullptr;

int32_t NoteCall(void* listener, const char* method, uint32_t argc, zq_Value*, zq_Value*) {
  Note(std::string(method) + (argc != 0 ? "(?)" : "") + (listener == nullptr ? " of nobody" : ""));
  if (g_reactsTo == method) {
    g_reactsTo.clear();
    g_reaction();
  }
  return 1;
}

class ConnectivityTest : public ModuleTest {
 protected:
  ConnectivityTest() {
    networkFacts = {};
    networkScriptRunning = false;
    g_clock = &clock;
    g_start = clock.Elapsed();
    g_reactsTo.clear();
    TakeEvents();
    onCheckForUpdates = [] { Note("check"); };
    engine.Table()[ZQ_SLOT_CALL_METHOD] = reinterpret_cast<uintptr_t>(NoteCall);
  }
  ~ConnectivityTest() override {
    if (ZQUtil::m_pInstance != nullptr) Settle();
  }

  ZQUtil& Singleton() { return *ZQUtil::m_pInstance; }

  void Start() {
    util = &New();
    Settle();
    ForgetTraces();
  }
  void Listen() { EXPECT_EQ(Register({BareEngine::Word(engine.NewObject())}), 1); }
  int32_t Register(const std::vector<zq_Value>& arguments) {
    return engine.Call(*util, "registerConnectivityListener", arguments, nullptr);
  }
  int32_t Check() { return engine.Call(*util, "checkConnectivity", {}, nullptr); }

  // As a network restart does.
  static void BeginMonitor() {
    ZQUtil& module = *ZQUtil::m_pInstance;
    module.network->connectionState = 0;
    zq_TimerSet(module.Handle(), 1000, kTimerNetworkStatus, 1, 0, 0, "Network Status Check Timer", false);
  }
  void Restart() {
    networkScriptRunning = true;
    Singleton().network->connectionState = 0;
    zq_TimerSet(Singleton().Handle(), 1000, kTimerNetworkStatus, 1, 0, 0, "Network Status Check Timer",
                false);
    g_start = clock.Elapsed();
    ForgetTraces();
    TakeEvents();
  }
  // Half seconds lie between the monitor's steps.
  void RunSeconds(double seconds) {
    RunFor(clock, Singleton().Handle(), milliseconds(static_cast<int64_t>(seconds * 1000)));
  }
  void Result(uint32_t type) {
    ASSERT_TRUE(PostToQueue(type, 0));
    Settle();
  }
  static void NewInterfaces() {
    ASSERT_TRUE(PostToQueue(ZQ_MSG_NEW_INTERFACES, 0));
    Settle();
  }
  static std::string TakeEvents() {
    const std::lock_guard lock(g_mutex);
    return std::exchange(g_events, {});
  }
  uint32_t Remaining(uint32_t timer) { return zq_TimerTimeRemaining(Singleton().Handle(), timer, 0, 0); }
  int32_t State() { return Singleton().network->connectionState; }
  std::string Property() {
    const auto& properties = engine.ClassObject().properties;
    const auto found = properties.find("ConnectivityListener");
    return found != properties.end() ? engine.Show(found->second) : "<none>";
  }

  Object* util = nullptr;
};

TEST_F(ConnectivityTest, WirelessWithDhcpFromRestartToSuccess) {
  Start();
  Listen();
  networkFacts.wireless = networkFacts.dhcp = true;
  networkFacts.interfaces = 1;
  Restart();
  RunSeconds(2.5);
  networkFacts.associated = true;
  RunSeconds(3);
  networkFacts.address = "192.168.1.5";
  NewInterfaces();
  RunSeconds(2);
  networkScriptRunning = false;
  RunSeconds(1);
  Result(kMsgUpdateServerReached);
  RunSeconds(10);
  EXPECT_EQ(TakeEvents(),
            "3.0 onAssociation, 4.0 onBeginDHCP, 6.0 onDoneDHCP, 8.0 onBeginConnectivityCheck, 8.2 check, "
            "8.5 onConnectSuccess");
  EXPECT_EQ(State(), kCheckStarted);
  EXPECT_EQ(Remaining(kTimerNetworkStatus), ZQ_TIMER_NOT_ARMED);
}

TEST_F(ConnectivityTest, WirelessWithDhcpIsTracedStepByStep) {
  Start();
  Listen();
  networkFacts.wireless = networkFacts.dhcp = networkFacts.associated = true;
  networkFacts.address = "192.168.1.5";
  networkFacts.interfaces = 2;
  Restart();
  RunSeconds(2.5);
  NewInterfaces();
  RunSeconds(1);
  networkScriptRunning = false;
  RunSeconds(1);
  EXPECT_EQ(Traces(),
            "ZQUtil Network State Check Timer, state is 0\n"
            "ZQUtil Checking Wireless 1\n"
            "ZQUtil Sending Connectivity Listener Associated\n"
            "ZQUtil sending onAssociation\n"
            "ZQUtil Network State Check Timer, state is 1\n"
            "ZQUtil Sending Connectivity Listener Beginning DHCP\n"
            "ZQUtil sending onBeginDHCP\n"
            "ZQUtil Socket got a New Interfaces notification\n"
            "ZQUtil Network State Check Timer, state is 2\n"
            "ZQUtil Sending Connectivity Listener Finished DHCP if num interfaces 2>0\n"
            "ZQUtil IP Address is 192.168.1.5\n"
            "ZQUtil num interfaces 2.  Sending onDoneDHCP.\n"
            "ZQUtil Network State Check Timer, state is 2\n"
            "ZQUtil Script is finished. Interfaces 2, waits 0\n"
            "ZQUtil Script got an IP Address 192.168.1.5\n"
            "ZQUtil Script sending onBeginConnectivityCheck\n"
            "ZQUtil Software Update Timer Fire (timer reset)\n");
}

TEST_F(ConnectivityTest, WiredGoesThroughStates0And1InOneTimerEvent) {
  Start();
  Listen();
  networkFacts.dhcp = true;
  Restart();
  RunSeconds(1.5);
  EXPECT_EQ(TakeEvents(), "1.0 onBeginDHCP");
  EXPECT_EQ(State(), kWaitingForAddress);
  EXPECT_EQ(Traces(),
            "ZQUtil Network State Check Timer, state is 0\n"
            "ZQUtil Checking Wireless 0\n"
            "ZQUtil Sending Connectivity Listener Beginning DHCP\n"
            "ZQUtil sending onBeginDHCP\n");
}

TEST_F(ConnectivityTest, WiredWithAStaticAddressIsCheckedWhenTheScriptHasEnded) {
  Start();
  Listen();
  Restart();
  RunSeconds(3.5);
  EXPECT_EQ(State(), kAssociatedOrWired);
  networkScriptRunning = false;
  RunSeconds(2);
  EXPECT_EQ(TakeEvents(), "4.0 onBeginConnectivityCheck, 4.2 check");
}

TEST_F(ConnectivityTest, WirelessWithAStaticAddressIsCheckedAfterItsAssociation) {
  Start();
  Listen();
  networkFacts.wireless = networkFacts.associated = true;
  Restart();
  RunSeconds(1.5);
  networkScriptRunning = false;
  RunSeconds(2);
  EXPECT_EQ(TakeEvents(), "1.0 onAssociation, 2.0 onBeginConnectivityCheck, 2.2 check");
}

TEST_F(ConnectivityTest, WithoutAListenerTheMonitorWalksOnInSilence) {
  for (const bool wireless : {false, true}) {
    for (const bool dhcp : {false, true}) {
      Start();
      networkFacts = {};
      networkFacts.wireless = networkFacts.associated = wireless;
      networkFacts.dhcp = dhcp;
      networkFacts.address = "10.0.0.7";
      Restart();
      RunSeconds(4.5);
      networkScriptRunning = false;
      RunSeconds(2);
      EXPECT_EQ(TakeEvents(), "5.2 check") << wireless << dhcp;
      EXPECT_EQ(State(), kCheckStarted);
      EXPECT_FALSE(Singleton().connectivityReported);
    }
  }
}

TEST_F(ConnectivityTest, AnAssociationThatNeverComesFailsOnlyAfterTheScriptsEnd) {
  Start();
  Listen();
  networkFacts.wireless = true;
  Restart();
  RunSeconds(60.5);
  EXPECT_EQ(TakeEvents(), "");
  networkScriptRunning = false;
  RunSeconds(10);
  EXPECT_EQ(TakeEvents(), "61.0 onFailedAssociation");
  EXPECT_EQ(State(), kWaitingForAssociation);
  EXPECT_EQ(Remaining(kTimerNetworkStatus), ZQ_TIMER_NOT_ARMED);
}

TEST_F(ConnectivityTest, EachNewInterfacesNotificationTellsOfTheAddressOnce) {
  Start();
  Listen();
  networkFacts.dhcp = true;
  networkFacts.interfaces = 1;
  Restart();
  RunSeconds(1.5);
  NewInterfaces();
  RunSeconds(2);
  EXPECT_EQ(TakeEvents(), "1.0 onBeginDHCP") << "no address yet";
  EXPECT_NE(Traces().find("num interfaces 1>0\nZQUtil IP Address is \n"), std::string::npos);
  networkFacts.addressIsNull = true;
  NewInterfaces();
  RunSeconds(1);
  networkFacts.addressIsNull = false;
  networkFacts.address = "10.0.0.7";
  RunSeconds(1);
  EXPECT_EQ(TakeEvents(), "") << "nobody said that something changed";
  NewInterfaces();
  NewInterfaces();
  RunSeconds(3);
  EXPECT_EQ(TakeEvents(), "6.0 onDoneDHCP");
  NewInterfaces();
  RunSeconds(1);
  EXPECT_EQ(TakeEvents(), "9.0 onDoneDHCP");
  EXPECT_NE(Traces().find("num interfaces 1>0\nZQUtil did not get an IP Address\n"), std::string::npos);
}

TEST_F(ConnectivityTest, ANotificationFromBeforeTheAssociationDoesNotCount) {
  Start();
  Listen();
  networkFacts.dhcp = true;
  networkFacts.address = "10.0.0.7";
  Restart();
  NewInterfaces();
  RunSeconds(3.5);
  EXPECT_EQ(TakeEvents(), "1.0 onBeginDHCP");
}

TEST_F(ConnectivityTest, TheScriptsEndWithoutAnAddressIsAFailure) {
  for (const bool null : {false, true}) {
    Start();
    Listen();
    networkFacts.dhcp = true;
    networkFacts.addressIsNull = null;
    networkFacts.interfaces = 1;
    Restart();
    RunSeconds(2.5);
    networkScriptRunning = false;
    ForgetTraces();
    RunSeconds(5);
    EXPECT_EQ(TakeEvents(), "1.0 onBeginDHCP, 3.0 onFailedAssociation");
    EXPECT_EQ(Traces(), std::string("ZQUtil Network State Check Timer, state is 2\n"
                                    "ZQUtil Script is finished. Interfaces 1, waits 0\n") +
                            (null ? "" : "ZQUtil Script got an IP Address \n") +
                            "ZQUtil Script finished but we didn't get an IP Address\n");
    EXPECT_EQ(State(), kWaitingForAddress);
    EXPECT_EQ(Remaining(kTimerNetworkStatus), ZQ_TIMER_NOT_ARMED);
  }
}

TEST_F(ConnectivityTest, AFailureAtTheEndIsToldThoughNobodyIsRegistered) {
  Start();
  networkFacts.dhcp = true;
  Restart();
  RunSeconds(2.5);
  networkScriptRunning = false;
  RunSeconds(5);
  EXPECT_EQ(TakeEvents(), "3.0 onFailedAssociation of nobody");
}

TEST_F(ConnectivityTest, InterfacesAreWaitedForThirteenTimesAndNoLonger) {
  Start();
  Listen();
  networkFacts.dhcp = true;
  networkFacts.address = "10.0.0.7";
  Restart();
  RunSeconds(2.5);
  networkScriptRunning = false;
  ForgetTraces();
  RunSeconds(30);
  // Steps at 3 to 15 wait, the one at 16 gives up.
  EXPECT_EQ(TakeEvents(), "1.0 onBeginDHCP, 16.0 onFailedAssociation");
  EXPECT_EQ(Singleton().interfaceWaits, 13);
  std::string expected;
  for (int wait = 0; wait <= 13; ++wait) {
    const std::string number = std::to_string(wait);
    expected +=
        "ZQUtil Network State Check Timer, state is 2\nZQUtil Script is finished. Interfaces 0, waits " +
        number + "\nZQUtil Script got an IP Address 10.0.0.7\n";
    expected += wait < 13 ? "ZQUtil Script finished.  Waiting a few seconds for interfaces to materialize, "
                            "interfaces: 0 (" +
                                number + ").\n"
                          : "ZQUtil Script finished but only one interface,  Sending onFailedAssociation.\n";
  }
  EXPECT_EQ(Traces(), expected);
}

TEST_F(ConnectivityTest, InterfacesThatAppearWhileTheyAreWaitedForAreEnough) {
  Start();
  Listen();
  networkFacts.dhcp = true;
  networkFacts.address = "10.0.0.7";
  Restart();
  networkScriptRunning = false;
  RunSeconds(14.5);
  networkFacts.interfaces = 1;
  RunSeconds(2);
  EXPECT_EQ(TakeEvents(), "1.0 onBeginDHCP, 15.0 onBeginConnectivityCheck, 15.2 check");
}

TEST_F(ConnectivityTest, EachRestartHasItsThirteenWaits) {
  Start();
  Listen();
  networkFacts.dhcp = true;
  networkFacts.address = "10.0.0.7";
  for (int restart = 0; restart < 2; ++restart) {
    Restart();
    networkScriptRunning = false;
    RunSeconds(30);
    EXPECT_EQ(TakeEvents(), "1.0 onBeginDHCP, 15.0 onFailedAssociation") << restart;
  }
}

TEST_F(ConnectivityTest, AListenerThatGoesAwayWhileInterfacesAreWaitedForLeavesTheCheck) {
  Start();
  Listen();
  networkFacts.dhcp = true;
  networkFacts.address = "10.0.0.7";
  Restart();
  networkScriptRunning = false;
  RunSeconds(4.5);
  EXPECT_EQ(Register({}), 1);
  RunSeconds(2);
  EXPECT_EQ(TakeEvents(), "1.0 onBeginDHCP, 5.2 check");
}

TEST_F(ConnectivityTest, OnlyTheFirstResultOfACheckIsTold) {
  Start();
  Listen();
  g_start = clock.Elapsed();
  for (const bool success : {true, false}) {
    Check();
    RunSeconds(1);
    const uint32_t first = success ? kMsgUpdateServerReached : kMsgUpdateServerNotReached;
    const uint32_t late = success ? kMsgUpdateServerNotReached : kMsgUpdateServerReached;
    Result(first);
    Result(late);
    Result(first);
  }
  EXPECT_EQ(TakeEvents(), "0.2 check, 1.0 onConnectSuccess, 1.2 check, 2.0 onConnectFailure");
}

TEST_F(ConnectivityTest, AResultOfTheNetworkThatWasIsNotTold) {
  Start();
  Listen();
  g_start = clock.Elapsed();
  Check();
  RunSeconds(1);
  networkFacts.wireless = true;
  Restart();
  RunSeconds(1);
  Result(kMsgUpdateServerReached);
  EXPECT_EQ(TakeEvents(), "");
}

TEST_F(ConnectivityTest, ARestartStopsNothingThatItDoesNotStartAgain) {
  Start();
  Listen();
  networkFacts.dhcp = true;
  networkFacts.address = "10.0.0.7";
  networkFacts.interfaces = 1;
  Restart();
  networkScriptRunning = false;
  RunSeconds(5.5);
  EXPECT_EQ(State(), kCheckStarted);
  Restart();
  networkScriptRunning = false;
  RunSeconds(3);
  EXPECT_EQ(TakeEvents(), "1.0 onBeginDHCP, 2.0 onBeginConnectivityCheck, 2.2 check");
}

TEST_F(ConnectivityTest, AListenerThatRestartsTheNetworkHearsOfTheNewOneFromItsBeginning) {
  for (const char* event : {"onAssociation", "onBeginDHCP", "onDoneDHCP", "onBeginConnectivityCheck"}) {
    Start();
    Listen();
    networkFacts.wireless = networkFacts.dhcp = networkFacts.associated = true;
    networkFacts.address = "10.0.0.7";
    networkFacts.interfaces = 1;
    Restart();
    g_reactsTo = event;
    g_reaction = [] {
      BeginMonitor();
      g_start = g_clock->Elapsed();
      TakeEvents();
    };
    RunSeconds(2.5);
    NewInterfaces();
    RunSeconds(1);
    networkScriptRunning = false;
    RunSeconds(10);
    EXPECT_EQ(g_reactsTo, "");
    const std::string events = TakeEvents();
    EXPECT_EQ(events.substr(0, 36), "1.0 onAssociation, 2.0 onBeginDHCP, ") << event;
    EXPECT_NE(events.find("onBeginConnectivityCheck"), std::string::npos) << event;
    EXPECT_EQ(State(), kCheckStarted);
    Drop(*util);
  }
}

TEST_F(ConnectivityTest, AListenerMayTryAnotherNetworkWhenItHearsOfAFailure) {
  Start();
  Listen();
  networkFacts.dhcp = true;
  networkFacts.interfaces = 1;
  Restart();
  networkScriptRunning = false;
  g_reactsTo = "onFailedAssociation";
  g_reaction = [] {
    networkFacts.address = "10.0.0.7";
    BeginMonitor();
  };
  RunSeconds(10);
  EXPECT_EQ(TakeEvents(),
            "1.0 onBeginDHCP, 2.0 onFailedAssociation, 3.0 onBeginDHCP, 4.0 onBeginConnectivityCheck, "
            "4.2 check");
}

TEST_F(ConnectivityTest, WithoutCallMethodTheMonitorWalksOn) {
  engine.Remove(ZQ_SLOT_CALL_METHOD);
  Start();
  Listen();
  networkFacts.wireless = networkFacts.associated = networkFacts.dhcp = true;
  networkFacts.address = "10.0.0.7";
  networkFacts.interfaces = 1;
  Restart();
  RunSeconds(3.5);
  networkScriptRunning = false;
  RunSeconds(2);
  EXPECT_EQ(TakeEvents(), "4.2 check");
}

TEST_F(ConnectivityTest, InStateThreeAStepDoesNothing) {
  Start();
  Listen();
  Singleton().network->connectionState = 3;
  ForgetTraces();
  ASSERT_TRUE(PostToQueue(ZQ_MSG_TIMER, 0, kTimerNetworkStatus));
  Settle();
  EXPECT_EQ(TakeEvents(), "");
  EXPECT_EQ(Remaining(kTimerNetworkStatus), ZQ_TIMER_NOT_ARMED);
  EXPECT_EQ(Traces(), "ZQUtil Network State Check Timer, state is 3\n");
}

TEST_F(ConnectivityTest, RegisteringKeepsTheListenerAndSaysSo) {
  Start();
  Object& listener = engine.NewObject();
  EXPECT_EQ(Register({BareEngine::Word(listener)}), 1);
  EXPECT_EQ(Singleton().connectivityListener, &listener);
  EXPECT_EQ(Property(), "<object>");
  EXPECT_EQ(Traces(), "ZQUtil Registering Connectivity Listener\nZQUtil Clearing old listener\n");
}

TEST_F(ConnectivityTest, AnythingButOneObjectClearsTheListenerAndSaysWhy) {
  Start();
  const zq_Value object = BareEngine::Word(engine.NewObject());
  const std::pair<std::vector<zq_Value>, const char*> cases[] = {
      {{}, "ZQUtil argument miscount, clearing\n"},
      {{object, object}, "ZQUtil argument miscount, clearing\n"},
      {{ZQ_VALUE_VOID}, "ZQUtil void argument, clearing\n"},
      {{ZQ_VALUE_NULL}, "ZQUtil NULL argument, clearing\n"},
  };
  for (const auto& [arguments, reason] : cases) {
    Listen();
    ForgetTraces();
    EXPECT_EQ(Register(arguments), 1);
    EXPECT_EQ(Singleton().connectivityListener, nullptr);
    EXPECT_EQ(Property(), "<null>");
    EXPECT_EQ(Traces(), std::string("ZQUtil Registering Connectivity Listener\n") + reason);
  }
}

TEST_F(ConnectivityTest, WhatIsNoObjectFails) {
  Start();
  EXPECT_EQ(Register({S("text")}), 0);
  EXPECT_EQ(Register({N(5)}), 0);
  EXPECT_EQ(Singleton().connectivityListener, nullptr);
  EXPECT_EQ(Property(), "<none>");
}

TEST_F(ConnectivityTest, AHostThatConvertsNoObjectsFails) {
  engine.Remove(ZQ_SLOT_VALUE_TO_OBJECT);
  Start();
  EXPECT_EQ(Register({BareEngine::Word(engine.NewObject())}), 0);
}

TEST_F(ConnectivityTest, ACheckForNobodyDoesNothing) {
  Start();
  updateAvailable = true;
  EXPECT_EQ(Check(), 1);
  EXPECT_TRUE(updateAvailable);
  EXPECT_EQ(Remaining(kTimerSoftwareUpdate), ZQ_TIMER_NOT_ARMED);
  EXPECT_EQ(Traces(), "");
  updateAvailable = false;
}

TEST_F(ConnectivityTest, ACheckRunsAfter200MillisecondsThoughAnUpdateIsPending) {
  Start();
  Listen();
  updateAvailable = true;
  Singleton().connectivityReported = true;
  g_start = clock.Elapsed();
  ForgetTraces();
  EXPECT_EQ(Check(), 1);
  EXPECT_FALSE(updateAvailable);
  EXPECT_FALSE(Singleton().connectivityReported);
  EXPECT_EQ(Remaining(kTimerSoftwareUpdate), 200U);
  EXPECT_EQ(Traces(), "ZQUtil Setting timer to check for Internet connectivity\n");
  RunSeconds(1);
  EXPECT_EQ(TakeEvents(), "0.2 check");
}

}  // namespace
