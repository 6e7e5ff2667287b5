// The queue thread's side: each message, each timer, and the rule that ends the process when the clock
// drifts.
#include <unistd.h>

#include <thread>

#include "TimeDrift.h"
#include "ZQNetwork.h"
#include "loopback_listener.h"
#include "module_fixture.h"
#include "zq_memory.h"
#include "zq_socket.h"
#include "zq_timer.h"
#include "zq_trace.h"
#include "zqwww.h"

namespace {

using std::chrono::seconds;

constexpr time_t kMonthStart = 1793491200;  // 2026-11-01T00:00:00 UTC

class MessageLoopTest : public ModuleTest {
 protected:
  ZQUtil& Singleton() { return *ZQUtil::m_pInstance; }

  // A running module whose start-up traces are behind it.
  void Start() {
    New();
    Settle();
    ForgetTraces();
    engine.TakeCalls();
  }

  void Post(uint32_t type, uintptr_t param2 = 0, uint32_t param1 = 0) {
    ASSERT_TRUE(PostToQueue(type, param2, param1));
    Settle();
  }

  Object& Listen() {
    Object& listener = engine.NewObject();
    Singleton().connectivityListener = &listener;
    Singleton().connectivityReported = false;
    return listener;
  }

  uint32_t Remaining(uint32_t timer) { return zq_TimerTimeRemaining(Singleton().Handle(), timer, 0, 0); }

  void SetSeconds(uint32_t intoMonth) { clock.SetWall({static_cast<time_t>(kMonthStart + intoMonth), 0}); }
};

TEST_F(MessageLoopTest, TheStartedQueueArmsTheTimeDriftCheckAndNoOtherTimer) {
  Start();
  EXPECT_EQ(Remaining(kTimerTimeDrift), 5000U);
  EXPECT_EQ(Remaining(kTimerSoftwareUpdate), ZQ_TIMER_NOT_ARMED);
  EXPECT_EQ(Remaining(kTimerNetworkStatus), ZQ_TIMER_NOT_ARMED);
}

TEST_F(MessageLoopTest, AQueueStartedMessageForgetsTheDriftReading) {
  Start();
  Singleton().timeDriftSeconds = 77;
  Post(ZQ_MSG_QUEUE_STARTED);
  EXPECT_EQ(Singleton().timeDriftSeconds, 0U);
  EXPECT_EQ(Remaining(kTimerTimeDrift), 5000U);
}

TEST_F(MessageLoopTest, TheUpdateTimerArmsItselfAgainWithTheStoredPeriodAndChecks) {
  WriteFile("zqutil.ini", "[config]\nupdateTime=60000\n");
  ZQUtil::myDeviceID = 34;  // or the next check would come sooner
  Start();
  Listen();
  Post(ZQ_MSG_TIMER, 0, kTimerSoftwareUpdate);
  EXPECT_EQ(Remaining(kTimerSoftwareUpdate), 60000U);
  EXPECT_EQ(Traces().substr(0, Traces().find('\n') + 1), "ZQUtil Software Update Timer Fire (timer reset)\n");
  EXPECT_EQ(engine.TakeCalls(), "onConnectFailure()")
      << "the check without a reachable server ends in a failure";
}

TEST_F(MessageLoopTest, APendingUpdateHoldsTheCheckBackUnlessAListenerWaitsForIt) {
  WriteFile("/brimvale/sorel/libzqdms.so", "");
  Start();
  Post(ZQ_MSG_TIMER, 0, kTimerSoftwareUpdate);
  EXPECT_EQ(Remaining(kTimerSoftwareUpdate), 1800000U);
  EXPECT_EQ(Traces(),
            "ZQUtil Software Update Timer Fire (timer reset)\n"
            "ZQUtil Software Not checking for updates : pending flag is set\n");
  Listen();
  Post(ZQ_MSG_TIMER, 0, kTimerSoftwareUpdate);
  EXPECT_EQ(engine.TakeCalls(), "onConnectFailure()");
  unlink("/brimvale/sorel/libzqdms.so");
}

TEST_F(MessageLoopTest, ANetworkRestartStartsTheMonitorAfresh) {
  Start();
  Singleton().network->connectionState = 3;  // where the monitor itself does nothing
  Singleton().connectivityReported = false;
  Singleton().interfaceWaits = 9;
  Post(ZQ_MSG_TIMER, 0, kTimerNetworkStatus);
  EXPECT_FALSE(Singleton().connectivityReported);
  EXPECT_EQ(Singleton().interfaceWaits, 9);
  Post(ZQ_MSG_TIMER, 1, kTimerNetworkStatus);
  EXPECT_TRUE(Singleton().connectivityReported);
  EXPECT_EQ(Singleton().interfaceWaits, 0);
  EXPECT_EQ(Traces(),
            "ZQUtil Network State Check Timer, state is 3\nZQUtil Network State Check Timer, state is 3\n");
}

TEST_F(MessageLoopTest, OtherTimersAndTypesAreIgnored) {
  Start();
  Post(ZQ_MSG_TIMER, 0, 4);
  Post(ZQ_MSG_TIMER, 0, 0);
  for (uint32_t type : {0U, 2U, 255U, 257U, 513U, 0x10006U, 0x10009U, 0x10010U, 0xFFFFFFFFU}) Post(type);
  EXPECT_EQ(Traces(), "");
  EXPECT_EQ(engine.TakeCalls(), "");
}

TEST_F(MessageLoopTest, OneCheckIsReportedOnce) {
  for (uint32_t type :
       {static_cast<uint32_t>(ZQ_MSG_SOCKET_CONNECTED), static_cast<uint32_t>(kMsgUpdateServerReached)}) {
    Start();
    Listen();
    Post(type);
    Post(type);
    EXPECT_EQ(engine.TakeCalls(), "onConnectSuccess()");
    EXPECT_EQ(Traces(), "ZQUtil Sending Connectivity Listener Success\n");
    Post(ZQ_MSG_SOCKET_FAILED);
    EXPECT_EQ(engine.TakeCalls(), "") << "a late failure of the same check";
  }
}

TEST_F(MessageLoopTest, AFailureIsReportedOnceAndItsSocketClosed) {
  for (uint32_t type :
       {static_cast<uint32_t>(ZQ_MSG_SOCKET_FAILED), static_cast<uint32_t>(kMsgUpdateServerNotReached)}) {
    Start();
    Listen();
    Post(type);
    Post(type);
    EXPECT_EQ(engine.TakeCalls(), "onConnectFailure()");
    EXPECT_EQ(Traces(),
              "ZQUtil Sending Connectivity Listener Failure\nZQUtil Socket Closed\nZQUtil Socket Closed\n");
  }
}

TEST_F(MessageLoopTest, WithoutAListenerNothingIsCalledAndTheFlagStays) {
  Start();
  Post(kMsgUpdateServerReached);
  Post(kMsgUpdateServerNotReached);
  EXPECT_FALSE(Singleton().connectivityReported);
  EXPECT_EQ(engine.TakeCalls(), "");
  EXPECT_EQ(Traces(), "ZQUtil Socket Closed\n");
}

TEST_F(MessageLoopTest, AConnectedSocketIsClosedThoughNobodyListens) {
  Start();
  LoopbackListener server;
  const uint32_t client =
      zq_SocketOpenTcpClient(Singleton().Handle(), "127.0.0.1", server.Port(), "test", __LINE__);
  ASSERT_NE(client, 0U);
  const int peer = server.Accept();
  char byte = 0;
  EXPECT_EQ(read(peer, &byte, 1), 0) << "closed by the handler";
  EXPECT_EQ(zq_SocketDescriptor(client), -1);
  close(peer);
}

TEST_F(MessageLoopTest, AFailedSocketIsClosed) {
  Start();
  const LoopbackListener nobody("127.0.0.1", LoopbackListener::Mode::kRefusing);
  const uint32_t client =
      zq_SocketOpenTcpClient(Singleton().Handle(), "127.0.0.1", nobody.Port(), "test", __LINE__);
  ASSERT_NE(client, 0U);
  for (int i = 0; i < 10000 && zq_SocketDescriptor(client) != -1; ++i) usleep(1000);
  EXPECT_EQ(zq_SocketDescriptor(client), -1);
  EXPECT_NE(Traces().find("ZQUtil Socket Closed\n"), std::string::npos);
}

TEST_F(MessageLoopTest, TheResultCountsAsReportedBeforeTheListenerHearsIt) {
  static std::atomic<int> reported;
  reported = -1;
  engine.Table()[ZQ_SLOT_CALL_METHOD] =
      reinterpret_cast<uintptr_t>(+[](void*, const char*, uint32_t, zq_Value*, zq_Value*) -> int32_t {
        reported = ZQUtil::m_pInstance->connectivityReported ? 1 : 0;
        return 1;
      });
  Start();
  Listen();
  Post(kMsgUpdateServerReached);
  EXPECT_EQ(reported, 1);
}

TEST_F(MessageLoopTest, WithoutTheNetworkTheMonitorAndTheScanDoNothing) {
  Start();
  ZQNetwork* const network = std::exchange(Singleton().network, nullptr);
  Post(ZQ_MSG_TIMER, 1, kTimerNetworkStatus);
  Post(kMsgBackgroundScan);
  Singleton().network = network;
  EXPECT_TRUE(Singleton().connectivityReported) << "the restart counts all the same";
  EXPECT_EQ(Traces(), "ZQUtil Get ESSID Message\n");
}

TEST_F(MessageLoopTest, WithoutCallMethodTheResultCountsAsReported) {
  engine.Remove(ZQ_SLOT_CALL_METHOD);
  Start();
  Listen();
  Post(kMsgUpdateServerReached);
  EXPECT_TRUE(Singleton().connectivityReported);
  EXPECT_EQ(engine.TakeCalls(), "");
}

TEST_F(MessageLoopTest, ListenersAreCalledWithoutEnteringTheEngineFirst) {
  Start();
  Listen();
  Post(kMsgUpdateServerReached);
  EXPECT_EQ(engine.TakeCalls(), "onConnectSuccess()") << "no <begin> or <end> around it";
}

TEST_F(MessageLoopTest, NotesNewInterfaces) {
  Start();
  Post(ZQ_MSG_NEW_INTERFACES);
  EXPECT_TRUE(Singleton().newInterfaces);
  EXPECT_EQ(Traces(), "ZQUtil Socket got a New Interfaces notification\n");
}

TEST_F(MessageLoopTest, ABackgroundScanCallsItsListenerOnce) {
  Start();
  Object& listener = engine.NewObject();
  Singleton().getessidListener = &listener;
  Post(kMsgBackgroundScan);
  EXPECT_EQ(engine.TakeCalls(), "onSSIDList()");
  EXPECT_EQ(engine.Show(engine.ClassObject().properties.at("getessidListener")), "<null>");
  EXPECT_EQ(Singleton().getessidListener, nullptr);
  Post(kMsgBackgroundScan);
  EXPECT_EQ(engine.TakeCalls(), "");
  std::string own;  // without the scan's
  for (const std::string& text : trace.Texts()) {
    if (text == "ZQUtil Get ESSID Message" || text == "ZQUtil calling onSSIDList") own += text + "\n";
  }
  EXPECT_EQ(own, "ZQUtil Get ESSID Message\nZQUtil calling onSSIDList\nZQUtil Get ESSID Message\n");
}

class CountedHttp : public HTTP {
 public:
  explicit CountedHttp(std::atomic<int>& gone) : gone_(gone) {}
  ~CountedHttp() override {
    if (std::this_thread::get_id() != maker_) ++gone_;
  }

 private:
  std::atomic<int>& gone_;
  const std::thread::id maker_ = std::this_thread::get_id();
};

TEST_F(MessageLoopTest, DestroysAnHttpObjectOnItsOwnThread) {
  Start();
  std::atomic<int> gone = 0;
  Post(kMsgHttpObjectDone, reinterpret_cast<uintptr_t>(static_cast<HTTP*>(new CountedHttp(gone))));
  EXPECT_EQ(gone, 1);
  Post(kMsgHttpObjectDone, 0);
  EXPECT_EQ(Traces(),
            "ZQUtil Destroying an http object\nZQUtil Done destroying http object\n"
            "ZQUtil Destroying an http object\nZQUtil Done destroying http object\n");
}

TEST(TimeDriftRule, AllowsSixHundredSecondsAndNoneBack) {
  EXPECT_FALSE(ClockDrifted(1000, 1600));
  EXPECT_TRUE(ClockDrifted(1000, 1601));
  EXPECT_TRUE(ClockDrifted(1000, 999));
  EXPECT_FALSE(ClockDrifted(1000, 1000));
  EXPECT_FALSE(ClockDrifted(0, 2000000)) << "the first check only records";
  EXPECT_FALSE(ClockDrifted(0, 0));
  EXPECT_TRUE(ClockDrifted(2591999, 4)) << "the turn of the month";
}

TEST_F(MessageLoopTest, TheFirstDriftCheckOnlyRecordsTheTime) {
  Start();
  SetSeconds(1000);
  RunFor(clock, Singleton().Handle(), seconds(5));
  EXPECT_EQ(Singleton().timeDriftSeconds, 1005U);
  EXPECT_EQ(Remaining(kTimerTimeDrift), 5000U);
}

TEST_F(MessageLoopTest, LivesThroughADayOfAClockThatRunsTrue) {
  SetSeconds(100);
  Start();
  RunFor(clock, Singleton().Handle(), std::chrono::hours(24));
  EXPECT_EQ(Singleton().timeDriftSeconds, 100U + 86400U);
}

TEST_F(MessageLoopTest, LivesThroughAJumpOfSixHundredSeconds) {
  Start();
  SetSeconds(995);
  RunFor(clock, Singleton().Handle(), seconds(5));
  SetSeconds(1595);
  RunFor(clock, Singleton().Handle(), seconds(5));
  EXPECT_EQ(Singleton().timeDriftSeconds, 1600U);
}

// The rest ends the process, so each runs in one of its own.
class TimeDriftDeathTest : public MessageLoopTest {
 protected:
  TimeDriftDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

  // Readings at two checks that follow each other.
  [[noreturn]] void Live(uint32_t first, uint32_t second) {
    zq_TraceRedirect("/tmp/drift.trace", 0);
    SetSeconds(first - 5);
    Start();
    RunFor(clock, Singleton().Handle(), seconds(5));
    ZQUtil::my_WriteINIFileString("config", "note", "stored just before", "zqutil.ini");
    SetSeconds(second - 5);
    clock.Advance(seconds(5));
    sleep(100);  // the queue thread ends the process
    _exit(99);
  }
};

TEST_F(TimeDriftDeathTest, AJumpOf601SecondsEndsTheProcessWithStatusZeroAndAWholeTrace) {
  unlink("/tmp/drift.trace");
  EXPECT_EXIT(Live(1000, 1601), testing::ExitedWithCode(0), "");
  EXPECT_NE(ReadFile("/tmp/drift.trace").find("Intentionally exiting due to Adobe Time Drift Bug\n"),
            std::string::npos);
  EXPECT_EQ(StoredSetting("note"), "stored just before") << "what a script stored is not lost to the restart";
}

TEST_F(TimeDriftDeathTest, AClockSetBackByASecondEndsTheProcess) {
  EXPECT_EXIT(Live(1000, 999), testing::ExitedWithCode(0), "");
}

TEST_F(TimeDriftDeathTest, TheTurnOfTheMonthEndsTheProcess) {
  constexpr uint32_t kNovember = 30 * 86400;
  EXPECT_EXIT(Live(kNovember - 3, kNovember + 2), testing::ExitedWithCode(0), "");
}

}  // namespace
