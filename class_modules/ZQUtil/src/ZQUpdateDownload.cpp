#include "ZQUpdateDownload.h"

#include <cstring>
#include <memory>

#include "DownloadDetails.h"
#include "DownloadPreparation.h"
#include "DownloadState.h"
#include "ZQSoftwareUpdate.h"
#include "ZQUtilTrace.h"
#include "zqwww.h"

namespace {

constexpr int kIncomingBuffer = 512000;

}  // namespace

const char* GetFilenameFromURL(const char* url) {
  const char* const slash = std::strrchr(url, '/');
  return slash != nullptr && slash != url ? slash + 1 : nullptr;
}

void DownloadUpdate(const char* url) {
  if (!ClaimDownload()) return;
  const char* const name = GetFilenameFromURL(url);
  ZQUTIL_TRACE("ZQUtil GetFilenameFromURL %s returned %s\n", url, name != nullptr ? name : "NULL");
  if (name == nullptr || !PrepareDownload(name, sDownloadDetails)) {
    updateAvailable = false;
    ReleaseDownload();
    return;
  }
  sDownloadDetails.received = 0;
  ZQUTIL_TRACE("ZQUtil Downloading Update\n");
  auto http = std::make_unique<HTTP>();
  http->setMaxIncomingBuffer(kIncomingBuffer);
  const zq_URL target(url);
  if (!target.valid()) ZQUTIL_TRACE("ZQUtil URL failed for '%s'\n", url);
  SetDownloadObject(http.get());
  if (target.valid() && http->connect(&target, HttpDownloadData, HttpDownloadError, nullptr,
                                      HttpDownloadConnected, HttpDownloadDisconnected, 0) != -1) {
    static_cast<void>(http.release());  // destroyed when it is disconnected
    return;
  }
  ZQUTIL_TRACE("ZQUtil Socket Failed\n");
  CleanUpDownload();
}
