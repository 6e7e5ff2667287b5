// The callbacks of a download, on the HTTP library's thread.
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "DownloadDetails.h"
#include "DownloadState.h"
#include "UpdateDecrypt.h"
#include "ZQSoftwareUpdate.h"
#include "ZQUpdateDownload.h"
#include "ZQUpdateInstall.h"
#include "ZQUtil.h"
#include "ZQUtilTrace.h"
#include "zq_thread.h"
#include "zqwww.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/HttpDownload";

// The package is on the disk, not just on its way there.
bool WholeOnDisk(std::FILE* stream) {
  return std::fflush(stream) == 0 && fsync(fileno(stream)) == 0;
}

// A disk that takes no more: what there is of the package must not be taken for it.
void FailToWrite() {
  ZQUTIL_TRACE("ZQUtil could not write %s: %s\n", sDownloadDetails.fileName, std::strerror(errno));
  ZQUTIL_TRACE("ZQUtil Update Failed!!!\n");
  CallUpdateListener("onDownloadFailed");
  CleanUpDownload();
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
  CleanUpDownload();
}

int32_t threadDestroyHttp(void* http) {
  delete static_cast<HTTP*>(http);
  return 0;
}

}  // namespace

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
  if (!IsDownloadOf(http)) {
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
  if (IsDownloadOf(http)) CleanUpDownload();
}

void HttpDownloadDisconnected(HTTP* http) {
  if (IsDownloadOf(http)) {
    ZQUTIL_TRACE("ZQUtil Update Failed!!!\n");
    CallUpdateListener("onDownloadFailed");
    CleanUpDownload();
  }
  ZQUTIL_TRACE("ZQUtil Received a disconnect notification from zqwww on downloading an update\n");
  const bool posted = PostToModule(kMsgHttpObjectDone, reinterpret_cast<uintptr_t>(http));
  updateAvailable = false;
  if (posted) return;
  // No queue any more: some thread that is not the object's own must do it.
  zq__beginthread(threadDestroyHttp, http, nullptr, kSourceTag, __LINE__);
}
