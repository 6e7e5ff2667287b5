#include "ZQUpdateDownload.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "DownloadDetails.h"
#include "InstallRule.h"
#include "KeyStore.h"
#include "UpdateDecrypt.h"
#include "ZQSoftwareUpdate.h"
#include "ZQUpdateInstall.h"
#include "ZQUtil.h"
#include "ZQUtilTrace.h"
#include "number_text.h"
#include "zq_file.h"
#include "zq_thread.h"
#include "zqwww.h"

DownloadDetails sDownloadDetails;

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQUpdateDownload";
constexpr int kTraceUnsupported = 50000;
constexpr int kIncomingBuffer = 512000;
constexpr int32_t kMostRetries = 5;
constexpr uint32_t kRetriesExceededMs = 1000;
constexpr int kRetriesExceededStatus = 9;

// A download is in progress: whoever sets it owns the record until it is cleared.
std::atomic<bool> g_inProgress = false;
// The object whose callbacks belong to it. Late callbacks of a download before are told from the ones of this.
std::atomic<HTTP*> g_http = nullptr;

bool InProgress(HTTP* http) {
  return g_inProgress && g_http == http;
}

void RemovePackages() {
  std::vector<std::string> names;
  zq_FindData data;
  if (zq_Find* const find = zq_FindFirstFile("/tmp/app-*.tgz", &data)) {
    do {
      names.emplace_back(data.name);
    } while (zq_FindNextFile(find, &data));
    zq_FindClose(find);
  }
  for (const std::string& name : names) zq_RemoveFile(("/tmp/" + name).c_str(), false);
}

void EndDownload() {
  g_http = nullptr;
  g_inProgress = false;
}

// The end of a download that was begun. May end the process.
void CleanUp() {
  if (sDownloadDetails.stream != nullptr) std::fclose(sDownloadDetails.stream);
  sDownloadDetails.stream = nullptr;
  sDownloadDetails.received = 0;
  sDownloadDetails.installRoutine = nullptr;
  RemovePackages();
  updateAvailable = false;
  EndDownload();
  if (updateCounter <= kMostRetries) return;
  ZQUTIL_TRACE("Rebooting Device due to update retries exceeded\n");
  zq__Sleep(kRetriesExceededMs, kSourceTag, __LINE__);
  RebootDevice();
  ExitHost(kRetriesExceededStatus);
}

void ReadDevice(DownloadDetails& details) {
  details.updateSupported = false;
  details.encrypted = false;
  details.installRoutine = nullptr;
  const KeyStore store;
  if (!store.Ok()) return;
  const KeyStoreValue active = store.Read("sys.activerfs");
  const KeyStoreValue standby = store.Read("sys.standbyrfs");
  std::memcpy(details.activeRfs, active.text, sizeof details.activeRfs);
  std::memcpy(details.standbyRfs, standby.text, sizeof details.standbyRfs);
  details.bootloaderVersion = DecimalNumber(store.Read("sys.bldrver").text);
  details.numParts = DecimalNumber(store.Read("sys.numparts").text);
  const Install install = InstallFor(details.bootloaderVersion, details.numParts);
  if (install == Install::kApply) details.installRoutine = ApplyUpdatePackage;
  if (install == Install::kCopy) details.installRoutine = CopyUpdateToUpdatesDir;
  details.updateSupported = install != Install::kNot;
}

// Fills the record and opens the package's file. False when this package cannot be had.
bool Prepare(const char* name, DownloadDetails& details) {
  ReadDevice(details);
  details.encrypted = IsEncryptedPackage(name);
  if (details.encrypted) {
    ZQUTIL_TRACE("%s is an encrypted file\n", name);
  } else {
    ZQUTIL_TRACE("%s is not an encrypted file\n", name);
  }
  if (IsMediaPackage(name)) {
    details.installRoutine = ApplyUpdatePackage;
    details.updateSupported = true;
  } else if (!details.updateSupported) {
    zq_Trace(ZQUtilTraceInstance, kTraceUnsupported, 1, true,
             "ZQUtil System Cannot Support Software Update\n");
    return false;
  }
  std::snprintf(details.fileName, sizeof details.fileName, "/tmp/%s", name);
  details.stream = std::fopen(details.fileName, "wbe");
  return details.stream != nullptr;
}

// The package is on the disk, not just on its way there.
bool WholeOnDisk(std::FILE* stream) {
  return std::fflush(stream) == 0 && fsync(fileno(stream)) == 0;
}

// A disk that takes no more: what there is of the package must not be taken for it.
void FailToWrite() {
  ZQUTIL_TRACE("ZQUtil could not write %s: %s\n", sDownloadDetails.fileName, std::strerror(errno));
  ZQUTIL_TRACE("ZQUtil Update Failed!!!\n");
  CallUpdateListener("onDownloadFailed");
  CleanUp();
}

void Complete() {
  ZQUTIL_TRACE("Received Full File %d\n", sDownloadDetails.received);
  CallUpdateListener("onDownloading", 100);
  ZQUTIL_TRACE("Checking if Encrypted File\n");
  if (sDownloadDetails.encrypted) {
    ZQUTIL_TRACE("File is Encrypted\n");
    DecryptPackage(sDownloadDetails);
  }
  ZQUTIL_TRACE("ZQUtil Update Done Message\n");
  if (updateListener != nullptr) {
    ZQUTIL_TRACE("ZQUtil sending onInstalling\n");
    CallUpdateListener("onInstalling");
  }
  SendUpdateDownloadedSuccess(currentUpdateId, assignedDeviceId);
  ZQUTIL_TRACE("Calling Cleanup\n");
  CleanUp();
}

int32_t threadDestroyHttp(void* http) {
  delete static_cast<HTTP*>(http);
  return 0;
}

}  // namespace

const char* GetFilenameFromURL(const char* url) {
  const char* const slash = std::strrchr(url, '/');
  return slash != nullptr && slash != url ? slash + 1 : nullptr;
}

void DownloadUpdate(const char* url) {
  if (g_inProgress.exchange(true)) return;
  const char* const name = GetFilenameFromURL(url);
  ZQUTIL_TRACE("ZQUtil GetFilenameFromURL %s returned %s\n", url, name != nullptr ? name : "NULL");
  if (name == nullptr || !Prepare(name, sDownloadDetails)) {
    updateAvailable = false;
    EndDownload();
    return;
  }
  sDownloadDetails.received = 0;
  ZQUTIL_TRACE("ZQUtil Downloading Update\n");
  auto http = std::make_unique<HTTP>();
  http->setMaxIncomingBuffer(kIncomingBuffer);
  const zq_URL target(url);
  if (!target.valid()) ZQUTIL_TRACE("ZQUtil URL failed for '%s'\n", url);
  g_http = http.get();
  if (target.valid() && http->connect(&target, HttpDownloadData, HttpDownloadError, nullptr,
                                      HttpDownloadConnected, HttpDownloadDisconnected, 0) != -1) {
    static_cast<void>(http.release());  // destroyed when it is disconnected
    return;
  }
  ZQUTIL_TRACE("ZQUtil Socket Failed\n");
  CleanUp();
}

void HttpDownloadConnected(HTTP* http) {
  ZQUTIL_TRACE("ZQUtil Received a connection from zqwww on download\n");
  const std::string request = std::string("GET ") + http->url()->requestTarget() + " HTTP/1.1\r\n" +
                              "Host: " + http->url()->hostText() + "\r\n" +
                              "Accept: text/xml, application/xml, "
                              "application/xhtml+xml, text/html; q=0.9, "
                              "text/plain; q=0.8\r\n"
                              "User-Agent: Brimvale RSS transport layer"
                              "\r\n\r\n";
  http->send(request.data(), static_cast<int>(request.size()));
}

void HttpDownloadData(HTTP* http, const zq_HttpResponse* response) {
  ZQUTIL_TRACE("ZQUtil Received data from zqwww on download\n");
  if (!InProgress(http)) {
    ZQUTIL_TRACE("ZQUtil Download in a very sad state... Quenby\n");
    return;
  }
  DownloadDetails& details = sDownloadDetails;
  if (std::fwrite(response->chunk, 1, response->chunkLength, details.stream) != response->chunkLength) {
    FailToWrite();
    return;
  }
  details.received += static_cast<int32_t>(response->chunkLength);
  if (details.received == response->contentLength) {
    if (WholeOnDisk(details.stream)) {
      Complete();
    } else {
      FailToWrite();
    }
    return;
  }
  const double length = static_cast<double>(response->contentLength);
  // A length that is not known yet is no progress yet.
  const int32_t percent = length > 0 ? static_cast<int32_t>(details.received / length * 100) : 0;
  ZQUTIL_TRACE("ZQUtil Download %d %% complete (cl=%d, cr=%d)\n", percent,
               static_cast<int32_t>(response->contentLength), details.received);
  CallUpdateListener("onDownloading", percent);
}

void HttpDownloadError(HTTP* http) {
  ZQUTIL_TRACE("ZQUtil Received an error from zqwww on Download\n");
  if (InProgress(http)) CleanUp();
}

void HttpDownloadDisconnected(HTTP* http) {
  if (InProgress(http)) {
    ZQUTIL_TRACE("ZQUtil Update Failed!!!\n");
    CallUpdateListener("onDownloadFailed");
    CleanUp();
  }
  ZQUTIL_TRACE("ZQUtil Received a disconnect notification from zqwww on downloading an update\n");
  updateAvailable = false;
  if (PostToModule(kMsgHttpObjectDone, reinterpret_cast<uintptr_t>(http))) return;
  // No queue any more: some thread that is not the object's own must do it.
  zq__beginthread(threadDestroyHttp, http, nullptr, kSourceTag, __LINE__);
}
