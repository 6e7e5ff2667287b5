#include "ZQNetworkRestart.h"

#include <cstdio>

#include "TriggerFile.h"
#include "ZQNetwork.h"
#include "ZQUtil.h"
#include "ZQUtilTrace.h"
#include "zq_file.h"
#include "zq_thread.h"
#include "zq_timer.h"

std::atomic<bool> networkScriptRunning = false;
std::atomic<bool> networkRestartBegins = false;

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQNetworkRestart";
constexpr char kRequest[] = "/tmp/do_S12";
constexpr char kDone[] = "/tmp/done_S12";
constexpr uint32_t kLookMs = 1000;
constexpr uint32_t kMonitorStepMs = 1000;
constexpr uintptr_t kRestartBegins = 1;
// The network settles before the device asks for updates again.
constexpr uint32_t kFirstUpdateCheckMs = 60000;

bool CanBeRead(const char* path) {
  std::FILE* const file = std::fopen(path, "re");
  if (file == nullptr) return false;
  std::fclose(file);
  return true;
}

}  // namespace

int32_t ZQNetwork::restartNetwork() {
  ZQUTIL_TRACE("ZQUtil spawning network restart thread\n");
  zq_TimerKill(ZQUtilMsgQHandle, kTimerSoftwareUpdate, 0, 0);
  networkScriptRunning = true;
  // Without a thread nobody would ever see the script done, and whoever waits for that would wait for good.
  if (zq__beginthread(threadRestartNetwork, this, nullptr, kSourceTag, __LINE__) == 0)
    networkScriptRunning = false;
  connectionState = 0;
  networkRestartBegins = true;
  return zq_TimerSet(ZQUtilMsgQHandle, kMonitorStepMs, kTimerNetworkStatus, kRestartBegins, 0, 0,
                     "Network Status Check Timer", false);
}

int32_t threadRestartNetwork(void* /*network*/) {
  ZQUTIL_TRACE("ZQUtil Calling system for network restart\n");
  if (CanBeRead(kDone)) {
    ZQUTIL_TRACE("ZQUtil deleting old /tmp/done_S12\n");
    zq_RemoveFile(kDone, true);
  }
  RaiseTrigger(kRequest);
  for (;;) {
    ZQUTIL_TRACE("ZQUtil looking for /tmp/done_S12\n");
    if (CanBeRead(kDone)) break;
    zq__Sleep(kLookMs, kSourceTag, __LINE__);
  }
  ZQUTIL_TRACE("ZQUtil found /tmp/done_S12\n");
  zq_RemoveFile(kDone, true);
  zq_TimerSet(ZQUtilMsgQHandle, kFirstUpdateCheckMs, kTimerSoftwareUpdate, 0, 0, 0,
              "Initial Software Update Timer", false);
  ZQUTIL_TRACE("ZQUtil Done with network restart\n");
  networkScriptRunning = false;
  return 0;
}
