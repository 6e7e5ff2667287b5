#include "DownloadPreparation.h"

#include <cstdio>
#include <cstring>

#include "DownloadDetails.h"
#include "InstallRule.h"
#include "KeyStore.h"
#include "ZQUpdateInstall.h"
#include "ZQUtilTrace.h"
#include "number_text.h"

namespace {

constexpr int kTraceUnsupported = 50000;

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

}  // namespace

bool PrepareDownload(const char* name, DownloadDetails& details) {
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
