#include "DownloadState.h"

#include <atomic>
#include <string>
#include <vector>

#include "DownloadDetails.h"
#include "ZQSoftwareUpdate.h"
#include "ZQUpdateInstall.h"
#include "ZQUtilTrace.h"
#include "zq_file.h"
#include "zq_thread.h"

DownloadDetails sDownloadDetails;

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/DownloadState";
constexpr int32_t kMostRetries = 5;
constexpr uint32_t kRetriesExceededMs = 1000;
constexpr int kRetriesExceededStatus = 9;

std::atomic<bool> g_claimed = false;
std::atomic<HTTP*> g_http = nullptr;

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

}  // namespace

bool ClaimDownload() {
  return !g_claimed.exchange(true);
}

void SetDownloadObject(HTTP* http) {
  g_http = http;
}

bool IsDownloadOf(HTTP* http) {
  return g_claimed && g_http == http;
}

void ReleaseDownload() {
  g_http = nullptr;
  g_claimed = false;
}

void CleanUpDownload() {
  if (sDownloadDetails.stream != nullptr) std::fclose(sDownloadDetails.stream);
  sDownloadDetails.stream = nullptr;
  sDownloadDetails.received = 0;
  sDownloadDetails.installRoutine = nullptr;
  RemovePackages();
  updateAvailable = false;
  ReleaseDownload();
  if (updateCounter <= kMostRetries) return;
  ZQUTIL_TRACE("Rebooting Device due to update retries exceeded\n");
  zq__Sleep(kRetriesExceededMs, kSourceTag, __LINE__);
  RebootDevice();
  ExitHost(kRetriesExceededStatus);
}
