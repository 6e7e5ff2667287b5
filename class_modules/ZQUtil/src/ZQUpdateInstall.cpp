#include "ZQUpdateInstall.h"

#include <sys/stat.h>

#include <cstring>
#include <string>

#include "DownloadDetails.h"
#include "KeyStore.h"
#include "TriggerFile.h"
#include "UpdateAcknowledgement.h"
#include "ZQFileUtilities.h"
#include "ZQPopen.h"
#include "ZQSoftwareUpdate.h"
#include "ZQUtilTrace.h"
#include "zq_file.h"
#include "zq_thread.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQUpdateInstall";
constexpr char kDoneKey[] = "update.done";
constexpr char kUpdaterFolder[] = "/updates";
constexpr char kUpdaterTrigger[] = "/tmp/do_update";
constexpr size_t kCaptureBytes = 128;
constexpr uint32_t kUpdaterPollMs = 1000;

void RunPackage(const std::string& command) {
  _ZqString* const out = zq_StringCreate(kCaptureBytes);
  _ZqString* const err = zq_StringCreate(kCaptureBytes);
  ZQPopen(command.c_str(), out, err, '\n');
  zq_StringDestroy(out);
  zq_StringDestroy(err);
}

bool Exists(const char* path) {
  struct stat status = {};
  return stat(path, &status) == 0;
}

// The system's updater consumes its trigger when it is done.
void RunUpdater() {
  ZQUTIL_TRACE("Calling update script\n");
  ZQUTIL_TRACE("ZQUtil creating %s\n", kUpdaterTrigger);
  CreateTriggerFile(kUpdaterTrigger);
  while (Exists(kUpdaterTrigger)) zq__Sleep(kUpdaterPollMs, kSourceTag, __LINE__);
  ZQUTIL_TRACE("ZQUtil done %s\n", kUpdaterTrigger);
}

void Finish(bool applied, int32_t updateId, int32_t deviceId) {
  if (applied) AcknowledgeUpdate(updateId, deviceId);
  if (updateId == currentUpdateId) ZQUTIL_TRACE("Rebooting Device from SendUpdateDownloadSuccess\n");
  RebootDevice();
}

}  // namespace

bool ApplyUpdatePackage() {
  sDownloadDetails.applied = false;
  // The name is the server's, and reaches the shell as it is: the server is trusted with this device.
  const std::string command =
      std::string("cd /tmp; tar zxf ") + sDownloadDetails.fileName + "; sh ./run mode=1";
  bool asked = false;
  {
    // At once and not deferred: the package's script answers in the same key.
    KeyStore store;
    asked = store.Ok() && store.Write(kDoneKey, "0");
  }
  RunPackage(command);
  if (!asked) return false;
  KeyStore store;
  if (!store.Ok()) return false;
  sDownloadDetails.applied = std::strcmp(store.Read(kDoneKey).text, "1") == 0;
  store.Erase(kDoneKey);
  return false;
}

bool CopyUpdateToUpdatesDir() {
  // What the updater will not find must not be acknowledged: the server would never offer it again.
  if (!ZQCopyFile(sDownloadDetails.fileName, kUpdaterFolder)) {
    ZQUTIL_TRACE("ZQUtil could not copy %s to %s\n", sDownloadDetails.fileName, kUpdaterFolder);
    sDownloadDetails.applied = false;
  }
  zq_RemoveFile(sDownloadDetails.fileName, false);
  return true;
}

void SendUpdateDownloadedSuccess(int32_t updateId, int32_t deviceId) {
  ZQUTIL_TRACE("ZQUtil SendUpdateDownloadedSuccess\n");
  sDownloadDetails.applied = true;
  if (sDownloadDetails.installRoutine != nullptr && sDownloadDetails.installRoutine()) RunUpdater();
  Finish(sDownloadDetails.applied, updateId, deviceId);
}

void SendPendingAcknowledgement(int32_t updateId, int32_t deviceId) {
  ZQUTIL_TRACE("ZQUtil SendUpdateDownloadedSuccess\n");
  Finish(true, updateId, deviceId);
}
