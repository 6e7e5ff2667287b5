// One check for updates, on a thread of its own.
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KeyStore.h"
#include "SoftwareUpdateList.h"
#include "UpdateServer.h"
#include "ZQSoftwareUpdate.h"
#include "ZQUpdateDownload.h"
#include "ZQUpdateInstall.h"
#include "ZQUtil.h"
#include "ZQUtilPersistence.h"
#include "ZQUtilTrace.h"
#include "number_text.h"
#include "zq_memory.h"
#include "zq_socket.h"
#include "zq_thread.h"
#include "zq_timer.h"
#include "zqwww.h"

std::atomic<int32_t> ZQUtil::myDeviceID = 0;

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQUpdateCheck";
constexpr uint32_t kFastCheckMs = 500;

void ArmSubsequentCheck(uint32_t milliseconds) {
  zq_TimerSet(ZQUtilMsgQHandle, milliseconds, kTimerSoftwareUpdate, 0, 0, 0,
              "Subsequent Software Update Timer", false);
}

// The acknowledgement that waits in the key store, taken out of it. False when there is none; one that cannot be read
// is dropped.
bool TakePendingAcknowledgement(int32_t& updateId, int32_t& deviceId) {
  KeyStore store;
  if (!store.Ok()) return false;
  const KeyStoreValue value = store.Read(kPendingAcknowledgementKey);
  if (value.text[0] == '\0') return false;
  store.Erase(kPendingAcknowledgementKey);
  const char* const separator = std::strchr(value.text, '&');
  if (separator == nullptr) return false;
  updateId = DecimalNumber(value.text);
  deviceId = DecimalNumber(separator + 1);
  return true;
}

// The server knows this form: its own name stands where the device's address was once meant to.
std::string RequestUrl(const UpdateServer& server) {
  return "https://00/zqapplog/updateReq?mac=" + server.host;
}

void Ask(SSLHTTP& http, const std::string& url) {
  ZQUTIL_TRACE("ZQUtil succesful connect\n");
  PostToModule(kMsgUpdateServerReached, 0);
  ZQUTIL_TRACE("ZQUtil Sending Body\n");
  char* const answer = http.SendBody(nullptr, url.c_str(), true);
  if (answer == nullptr) {
    ZQUTIL_TRACE("No Result\n");
    return;
  }
  ZQUTIL_TRACE("ZQUtil Calling HttpProcessResponse: %s\n", answer);
  HttpProcessResponse(answer);
  zq__free(answer, kSourceTag, __LINE__);
}

void Check() {
  ZQUTIL_TRACE("ZQUtil Beginning Update\n");
  const TransportUse transport;
  SSLHTTP http;
  AddUpdateHeaders(http);
  const UpdateServer server = ConfiguredUpdateServer();
  char mac[ZQ_MAC_TEXT];
  zq_GetMACAddress(mac);
  const std::string url = RequestUrl(server);
  ZQUTIL_TRACE("ZQUtil Connecting to %s\n", url.c_str());
  const bool connected = ConnectToUpdateServer(http, server);
  ZQUTIL_TRACE("ZQUtil finished connecting\n");
  if (connected) {
    Ask(http, url);
  } else {
    ZQUTIL_TRACE("Connection Failed\n");
    PostToModule(kMsgUpdateServerNotReached, 0);
  }
  ZQUTIL_TRACE("ZQUtil Deleting SSL Object\n");
}

void TakeDeviceId(int32_t id) {
  assignedDeviceId = id;
  if (ZQUtil::myDeviceID.exchange(id) != id) {
    ArmSubsequentCheck(static_cast<uint32_t>(ZQUtil::softwareUpdateCheckTime.load()));
  }
  ZQUTIL_TRACE("ZQUtil Writing to file\n");
  ZQUtil::my_WriteINIFileInt(kConfigSection, "deviceid", id, kSettingsFile);
}

// The last of those that must be installed; null when there is none.
const OfferedUpdate* LastForced(const std::vector<OfferedUpdate>& updates) {
  const OfferedUpdate* last = nullptr;
  for (const OfferedUpdate& update : updates) {
    if (update.forced) last = &update;
  }
  return last;
}

void AnnounceUpdates(bool any, const std::optional<std::string>& forcedPath) {
  const bool heard = updateListener != nullptr;
  if (forcedPath) {
    if (heard) {
      ZQUTIL_TRACE("ZQUtil Alerting GUI to forced update\n");
      CallUpdateListener("forcedUpdateAvailable");
    }
    ZQUTIL_TRACE("ZQUtil Downloading Update\n");
    DownloadUpdate(forcedPath->c_str());
  } else if (any && heard) {
    // And no more than that: scripts learn of these by asking for the list.
    ZQUTIL_TRACE("ZQUtil Alerting GUI to optional update\n");
  }
}

}  // namespace

void ZQUtil::CheckForAvailableUpdates() {
  if (zq__beginthread(threadCheckForAvailableUpdates, nullptr, nullptr, kSourceTag, __LINE__) != 0) return;
  // The system starts no more threads: what listeners wait for is answered all the same.
  PostToModule(kMsgUpdateServerNotReached, 0);
}

int32_t threadCheckForAvailableUpdates(void* /*unused*/) {
  std::puts("Checking For Available Updates...");
  std::fflush(stdout);
  int32_t updateId = 0;
  int32_t deviceId = 0;
  if (TakePendingAcknowledgement(updateId, deviceId)) {
    SendPendingAcknowledgement(updateId, deviceId);
    ZQUTIL_TRACE("ZQUtil Pending Download Success ACK for updateId=%d\n", updateId);
    return 0;
  }
  Check();
  if (ZQUtil::myDeviceID == 0) {
    ZQUTIL_TRACE("ZQUtil Setting a fast timer\n");
    ArmSubsequentCheck(kFastCheckMs);
  } else {
    ZQUTIL_TRACE("ZQUtil Not setting a fast timer because deviceId is %d\n", ZQUtil::myDeviceID.load());
  }
  return 0;
}

void HttpProcessResponse(char* xml) {
  updateAvailable = false;
  ZQUTIL_TRACE("ZQUtil Calling dom_parse\n");
  std::optional<UpdateResponse> response = ReadUpdateResponse(xml);
  ZQUTIL_TRACE("ZQUtil Done with dom_parse\n");
  if (!response) return;
  ZQUTIL_TRACE("ZQUtil Emptying Software Update List\n");
  for (const int32_t id : response->deviceIds) TakeDeviceId(id);
  const OfferedUpdate* const last = LastForced(response->updates);
  const std::optional<std::string> forcedPath = last != nullptr ? std::optional(last->path) : std::nullopt;
  if (last != nullptr) currentUpdateId = last->id;
  const bool any = !response->updates.empty();
  updateCounter += static_cast<int32_t>(response->updates.size());
  ReplaceSoftwareUpdateList(std::move(response->updates));
  if (any) updateAvailable = true;
  AnnounceUpdates(any, forcedPath);
}
