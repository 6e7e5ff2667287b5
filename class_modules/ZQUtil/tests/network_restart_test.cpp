// A restart of the network: the files between the module and the system's script, the thread that waits, the timers.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "ZQNetwork.h"
#include "ZQNetworkRestart.h"
#include "module_fixture.h"
#include "no_more_threads.h"
#include "zq_thread.h"
#include "zq_timer.h"

namespace {

namespace fs = std::filesystem;
using std::chrono::seconds;

constexpr char kRequest[] = "/tmp/do_S12";
constexpr char kDone[] = "/tmp/done_S12";
constexpr char kLook[] = "ZQUtil looking for /tmp/done_S12\n";

class NetworkRestartTest : public ModuleTest {
 protected:
  // The light-sensor thread sleeps beside those of the restarts.
  static constexpr size_t kOthersAsleep = 1;

  NetworkRestartTest() { Begin(); }

  void Begin() {
    util_ = &New();
    Settle();
    clock.AwaitSleepers(kOthersAsleep);
    ForgetTraces();
  }
  void End() {
    Drop(*util_);
    Unload();
  }

  ZQNetwork& Network() { return *ZQUtil::m_pInstance->network; }
  uint32_t Remaining(uint32_t timer) {
    return zq_TimerTimeRemaining(ZQUtil::m_pInstance->Handle(), timer, 0, 0);
  }
  // Restarts, and returns when that many restarts wait.
  int32_t Restart(size_t waiting = 1) {
    const int32_t result = Network().restartNetwork();
    clock.AwaitSleepers(kOthersAsleep + waiting);
    return result;
  }
  // A second goes by; that many restarts still wait afterwards.
  void Second(size_t waiting) {
    clock.Advance(seconds(1));
    if (waiting == 0) {
      ASSERT_TRUE(zq_ThreadAwaitEnd(threadRestartNetwork, 60000));
    }
    clock.AwaitSleepers(kOthersAsleep + waiting);
  }

  Object* util_ = nullptr;
};

TEST_F(NetworkRestartTest, AsksTheSystemAndStartsTheMonitor) {
  Network().connectionState = 3;
  zq_TimerSet(ZQUtil::m_pInstance->Handle(), 5000, kTimerSoftwareUpdate, 0, 0, 0, "test", false);
  EXPECT_EQ(Restart(), 1);
  EXPECT_TRUE(networkScriptRunning);
  EXPECT_EQ(Network().connectionState, 0);
  EXPECT_EQ(ReadFile(kRequest), "1");
  EXPECT_EQ(Remaining(kTimerNetworkStatus), 1000U);
  EXPECT_EQ(Remaining(kTimerSoftwareUpdate), ZQ_TIMER_NOT_ARMED) << "no update check meanwhile";
  EXPECT_EQ(Traces(),
            "ZQUtil spawning network restart thread\nZQUtil Calling system for network restart\n"
            "ZQUtil creating /tmp/do_S12\nZQUtil created /tmp/do_S12\nZQUtil done /tmp/do_S12\n"
            "ZQUtil looking for /tmp/done_S12\n");
}

TEST_F(NetworkRestartTest, TheMonitorsFirstStepForgetsTheResultOfTheNetworkBefore) {
  ZQUtil::m_pInstance->connectivityReported = false;
  ZQUtil::m_pInstance->interfaceWaits = 9;
  Restart();
  Second(1);
  Settle();
  EXPECT_EQ(ZQUtil::m_pInstance->interfaceWaits, 0) << "the timer said that a restart begins";
}

TEST_F(NetworkRestartTest, AStepUnderWayAtTheRequestLeavesTheMonitorsFirstStepWhatItIs) {
  ZQUtil::m_pInstance->connectivityReported = false;
  ZQUtil::m_pInstance->interfaceWaits = 9;
  Restart();
  // As such a step does at its end.
  zq_TimerSet(ZQUtil::m_pInstance->Handle(), 1000, kTimerNetworkStatus, 0, 0, 0, "Network Status Check Timer",
              false);
  Second(1);
  Settle();
  EXPECT_TRUE(ZQUtil::m_pInstance->connectivityReported);
  EXPECT_EQ(ZQUtil::m_pInstance->interfaceWaits, 0);
  ZQUtil::m_pInstance->interfaceWaits = 9;
  Second(1);
  Settle();
  EXPECT_EQ(ZQUtil::m_pInstance->interfaceWaits, 9) << "the next step is none";
}

TEST_F(NetworkRestartTest, LooksEachSecondUntilTheScriptIsDone) {
  Restart();
  // The monitor asks for the address when the script is done, which would put the update check off at once.
  zq_TimerKill(ZQUtil::m_pInstance->Handle(), kTimerNetworkStatus, 0, 0);
  for (int i = 0; i < 100; ++i) Second(1);
  EXPECT_TRUE(networkScriptRunning);
  ForgetTraces();
  WriteFile(kDone, "1");
  Second(0);
  EXPECT_FALSE(networkScriptRunning);
  EXPECT_FALSE(fs::exists(kDone));
  EXPECT_TRUE(fs::exists(kRequest)) << "the script's to take";
  EXPECT_EQ(Remaining(kTimerSoftwareUpdate), 60000U);
  EXPECT_NE(
      Traces().find(std::string(kLook) + "ZQUtil found /tmp/done_S12\nZQUtil Done with network restart\n"),
      std::string::npos)
      << Traces();
}

TEST_F(NetworkRestartTest, AnAnswerToAnEarlierRequestIsNotTakenForThisOne) {
  WriteFile(kDone, "1");
  Restart();
  EXPECT_FALSE(fs::exists(kDone));
  EXPECT_TRUE(networkScriptRunning);
  EXPECT_EQ(Traces(),
            "ZQUtil spawning network restart thread\nZQUtil Calling system for network restart\n"
            "ZQUtil deleting old /tmp/done_S12\nZQUtil creating /tmp/do_S12\nZQUtil created /tmp/do_S12\n"
            "ZQUtil done /tmp/do_S12\nZQUtil looking for /tmp/done_S12\n");
}

TEST_F(NetworkRestartTest, WithoutARequestItWaitsAllTheSame) {
  fs::create_directory(kRequest);
  Restart();
  Second(1);
  EXPECT_TRUE(networkScriptRunning);
  EXPECT_EQ(Traces().find("ZQUtil created /tmp/do_S12\n"), std::string::npos);
  EXPECT_NE(Traces().find("ZQUtil done /tmp/do_S12\n"), std::string::npos);
  WriteFile(kDone, "1");
  Second(0);
  EXPECT_FALSE(networkScriptRunning);
}

TEST_F(NetworkRestartTest, WithoutAFolderForTheFilesItWaitsUntilThereIsOne) {
  fs::rename(OnThisMachine("/tmp"), OnThisMachine("/tmp-aside"));
  Restart();
  Second(1);
  EXPECT_TRUE(networkScriptRunning);
  fs::rename(OnThisMachine("/tmp-aside"), OnThisMachine("/tmp"));
  EXPECT_FALSE(fs::exists(kRequest));
  WriteFile(kDone, "1");
  Second(0);
  EXPECT_FALSE(networkScriptRunning);
}

TEST_F(NetworkRestartTest, ASecondRestartAsksAgainAndOneAnswerEndsTheFirstToSeeIt) {
  Restart(1);
  fs::remove(kRequest);  // the script has taken it
  Network().connectionState = 2;
  Second(1);
  Settle();  // or the monitor's step of that second would go on from the new restart's state
  EXPECT_EQ(Restart(2), 1);
  EXPECT_EQ(Network().connectionState, 0);
  EXPECT_EQ(ReadFile(kRequest), "1");
  EXPECT_EQ(Remaining(kTimerNetworkStatus), 1000U);
  Second(2);
  EXPECT_TRUE(networkScriptRunning);
  WriteFile(kDone, "1");
  clock.Advance(seconds(1));
  while (networkScriptRunning) std::this_thread::yield();
  EXPECT_TRUE(trace.Has("ZQUtil Done with network restart"));
  EndRestarts();
  EXPECT_FALSE(networkScriptRunning);
}

TEST_F(NetworkRestartTest, TheModuleEndsAtOnceAndTheThreadWaitsOn) {
  Restart();
  End();
  EXPECT_EQ(ZQUtil::m_pInstance, nullptr);
  EndLightSensor();
  EXPECT_FALSE(zq_ThreadAwaitEnd(threadRestartNetwork, 0));
  EXPECT_TRUE(networkScriptRunning);
  clock.AwaitSleepers(1);
  WriteFile(kDone, "1");
  clock.Advance(seconds(1));
  EXPECT_TRUE(zq_ThreadAwaitEnd(threadRestartNetwork, 60000));
  EXPECT_FALSE(networkScriptRunning);
  EXPECT_FALSE(fs::exists(kDone));
  EXPECT_TRUE(trace.Has("ZQUtil Done with network restart"));
}

TEST_F(NetworkRestartTest, ARestartOutlivesTheModuleAndArmsTheTimerOfTheNext) {
  Restart();
  End();
  EndLightSensor();
  Begin();
  clock.AwaitSleepers(kOthersAsleep + 1);
  WriteFile(kDone, "1");
  Second(0);
  EXPECT_FALSE(networkScriptRunning);
  EXPECT_EQ(Remaining(kTimerSoftwareUpdate), 60000U);
}

TEST_F(NetworkRestartTest, ModulesThatComeAndGoInTheMiddleOfRestarts) {
  for (int i = 0; i < 20; ++i) {
    Network().restartNetwork();
    if (i % 2 != 0) Network().restartNetwork();
    if (i % 3 == 0) WriteFile(kDone, "1");
    clock.Advance(seconds(1));
    End();
    EndLightSensor();
    Begin();
  }
  End();
  EndRestarts();
  EXPECT_FALSE(networkScriptRunning);
}

TEST_F(NetworkRestartTest, WithoutAThreadNobodyWaitsForTheScript) {
  {
    const NoMoreThreads tight;
    EXPECT_EQ(Network().restartNetwork(), 1);
  }
  EXPECT_FALSE(networkScriptRunning);
  EXPECT_FALSE(fs::exists(kRequest));
  EXPECT_EQ(Remaining(kTimerNetworkStatus), 1000U) << "the monitor finds out";
}

}  // namespace
