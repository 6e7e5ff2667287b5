// The queue thread's side of the singleton: every message, timer expiry and socket notice comes through here, one at a
// time. Listeners are called from here without BeginRequest and EndRequest: each is a single call, which the engine
// takes from any thread.
#include "ESSIDListTurn.h"
#include "TimeDrift.h"
#include "ZQNetwork.h"
#include "ZQNetworkRestart.h"
#include "ZQSoftwareUpdate.h"
#include "ZQUtil.h"
#include "ZQUtilPersistence.h"
#include "ZQUtilTrace.h"
#include "listeners.h"
#include "zq_memory.h"
#include "zq_socket.h"
#include "zq_system.h"
#include "zq_thread.h"
#include "zq_timer.h"
#include "zqwww.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQUtilMessageLoop";

}  // namespace

void ZQUtil::MessageHandler(MSG_COMMON* message) {
  switch (message->type) {
    case ZQ_MSG_QUEUE_STARTED:
      OnQueueStarted();
      break;
    case ZQ_MSG_TIMER:
      OnTimer(message->param1, message->param2);
      break;
    case ZQ_MSG_SOCKET_CONNECTED:
    case kMsgUpdateServerReached:
      OnConnectSuccess(message->param1);
      break;
    case ZQ_MSG_SOCKET_FAILED:
    case kMsgUpdateServerNotReached:
      OnConnectFailure(message->param1);
      break;
    case ZQ_MSG_NEW_INTERFACES:
      ZQUTIL_TRACE("ZQUtil Socket got a New Interfaces notification\n");
      newInterfaces = true;
      break;
    case kMsgNVRAMWrite:
      // A store that cannot be opened ends the write: record and message stay as they are, and nobody tries again.
      if (!WriteNVRAMRecord(reinterpret_cast<NVRAMWriteRecord*>(message->param2))) return;
      break;
    case kMsgConfigWrite:
      SaveConfig(static_cast<int32_t>(message->param2));
      break;
    case kMsgBackgroundScan:
      OnBackgroundScan();
      break;
    case kMsgHttpObjectDone:
      // On this thread, and never from the object's own callback on the library's thread.
      ZQUTIL_TRACE("ZQUtil Destroying an http object\n");
      delete reinterpret_cast<HTTP*>(message->param2);
      ZQUTIL_TRACE("ZQUtil Done destroying http object\n");
      break;
    default:
      break;
  }
  zq__free(message, kSourceTag, __LINE__);
}

void ZQUtil::OnQueueStarted() {
  ZQUtilMsgQHandle = Handle();
  SetName("ZQUtil Class Module");
  timeDriftSeconds = 0;
  zq_TimerSet(ZQUtilMsgQHandle, kTimeDriftPeriodMs, kTimerTimeDrift, 0, 0, 0, "Adobe Time Drift Check",
              false);
}

void ZQUtil::OnTimer(uint32_t id, uintptr_t param) {
  switch (id) {
    case kTimerSoftwareUpdate:
      OnSoftwareUpdateTimer();
      break;
    case kTimerNetworkStatus:
      OnNetworkStatusTimer(param);
      break;
    case kTimerTimeDrift:
      OnTimeDriftTimer();
      break;
    default:
      break;
  }
}

void ZQUtil::OnSoftwareUpdateTimer() {
  zq_TimerSet(ZQUtilMsgQHandle, static_cast<uint32_t>(softwareUpdateCheckTime), kTimerSoftwareUpdate, 0, 0, 0,
              "Subsequent Software Update Timer", false);
  ZQUTIL_TRACE("ZQUtil Software Update Timer Fire (timer reset)\n");
  if (updateAvailable && connectivityListener == nullptr) {
    ZQUTIL_TRACE("ZQUtil Software Not checking for updates : pending flag is set\n");
    return;
  }
  CheckForAvailableUpdates();
}

void ZQUtil::OnNetworkStatusTimer(uintptr_t param) {
  if (networkRestartBegins.exchange(false) || param == 1) {
    // A network restart begins: a result that is still on its way belongs to the network that was.
    connectivityReported = true;
    interfaceWaits = 0;
  }
  if (network == nullptr) return;
  ZQUTIL_TRACE("ZQUtil Network State Check Timer, state is %d\n", network->connectionState.load());
  HandleNetworkCheckTimer();
}

void ZQUtil::OnTimeDriftTimer() {
  const uint32_t now = zq_SecondsIntoMonth();
  if (ClockDrifted(timeDriftSeconds, now)) {
    ZQUTIL_TRACE("Intentionally exiting due to Adobe Time Drift Bug\n");
    // Writes posted before this check was due are done: the queue keeps to the instants. For those that came since then,
    // while it was busy, it cannot wait here: they wait for this handler.
    AwaitConfigWrites();
    zq_ExitProcess(0);
  }
  timeDriftSeconds = now;
  zq_TimerSet(ZQUtilMsgQHandle, kTimeDriftPeriodMs, kTimerTimeDrift, 0, 0, 0, "Adobe Time Drift Check",
              false);
}

void ZQUtil::ReportConnectivity(const char* trace, const char* method) {
  void* const listener = connectivityListener;
  if (listener == nullptr || connectivityReported) return;
  ZQUTIL_TRACE("%s", trace);
  connectivityReported = true;
  CallListener(listener, method);
}

void ZQUtil::OnConnectSuccess(uint32_t socket) {
  ReportConnectivity("ZQUtil Sending Connectivity Listener Success\n", "onConnectSuccess");
  zq_SocketClose(socket);
}

void ZQUtil::OnConnectFailure(uint32_t socket) {
  ReportConnectivity("ZQUtil Sending Connectivity Listener Failure\n", "onConnectFailure");
  ZQUTIL_TRACE("ZQUtil Socket Closed\n");
  zq_SocketClose(socket);
}

void ZQUtil::OnBackgroundScan() {
  ZQUTIL_TRACE("ZQUtil Get ESSID Message\n");
  if (network != nullptr) {
    // Not while the listener is called, which reads the list.
    const ESSIDListTurn turn(ESSIDListTurn::Use::kScans);
    network->getESSIDList(true, false, nullptr, false);
  }
  void* const listener = getessidListener;
  if (listener == nullptr) return;
  ZQUTIL_TRACE("ZQUtil calling onSSIDList\n");
  CallListener(listener, "onSSIDList");
  // One registration, one callback.
  ForgetListener("getessidListener", getessidListener);
}

void ZQUtil::SaveConfig(int32_t kind) {
  ZQUTIL_TRACE("ZQUtil Asynchronous config write (%d)\n", kind);
  if (screen != nullptr && kind == kConfigContrast) SaveContrast(*screen);
  if (audioVolume != nullptr && kind == kConfigAudio) SaveVolumes(*audioVolume);
  if (screen != nullptr && kind == kConfigBrightness) SaveBrightness(*screen);
}
