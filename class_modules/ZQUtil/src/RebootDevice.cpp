// The restart after an update: of the device, or of the host alone. And the way back to how it left the factory.
#include <strings.h>

#include "KeyStore.h"
#include "TriggerFile.h"
#include "ZQSoftwareUpdate.h"
#include "ZQUpdateInstall.h"
#include "ZQUtil.h"
#include "ZQUtilPersistence.h"
#include "ZQUtilTrace.h"
#include "zq_file.h"
#include "zq_thread.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/RebootDevice";
constexpr char kRebootTrigger[] = "/tmp/reboot";
constexpr uint32_t kBeforeExitMs = 4000;
constexpr uint32_t kSuspendedMs = 2;
constexpr uint32_t kRebootMs = 5000;

// Configuration management may hold the reboot back; without it nothing does.
void AwaitUpdatesNotSuspended() {
  void* const library = zq_LoadLibrary("libcfgmgr.so");
  if (library == nullptr) {
    ZQUTIL_TRACE("Failed to find 'libcfgmgr.so'\n");
    return;
  }
  const auto areUpdatesSuspended =
      reinterpret_cast<int32_t (*)()>(zq_GetProcAddress(library, "areUpdatesSuspended"));
  if (areUpdatesSuspended == nullptr) ZQUTIL_TRACE("Failed to find 'areUpdatesSuspended'\n");
  while (areUpdatesSuspended != nullptr && areUpdatesSuspended() != 0) {
    zq__Sleep(kSuspendedMs, kSourceTag, __LINE__);
    ZQUTIL_TRACE("** waiting to reboot - updates are suspended **\n");
  }
  zq_FreeLibrary(library);
}

}  // namespace

bool rebootRequired() {
  KeyStoreValue value;
  {
    KeyStore store;
    if (store.Ok()) {
      value = store.Read("sys.reboot");
      store.Erase("sys.reboot");
    }
  }
  const bool required = strcasecmp(value.text, "no") != 0;
  if (!required) {
    ZQUTIL_TRACE("Returning %d\n", 0);
    ZQUTIL_TRACE("ZQUtil Update: not rebooting as sys reboot is set (restarting sorel instead)\n");
    zq__Sleep(kBeforeExitMs, kSourceTag, __LINE__);
    ExitHost(0);
  }
  ZQUTIL_TRACE("Returning %d\n", 1);
  return true;
}

void RebootDevice() {
  ZQUTIL_TRACE("Reboot Device Called\n");
  ZQUTIL_TRACE("Call to rebootRequired %d\n", 1);
  rebootRequired();
  AwaitUpdatesNotSuspended();
  ZQUTIL_TRACE("ZQUtil done updating database.  Sorel is outta here.\n");
  ZQUTIL_TRACE("ZQUtil Update Done Message\n");
  if (updateListener != nullptr) {
    ZQUTIL_TRACE("ZQUtil sending onInstalling\n");
    CallUpdateListener("onInstalling");
  }
  ZQUTIL_TRACE("ZQUtil issuing a reboot\n");
  CreateTriggerFile(kRebootTrigger);
  ZQUTIL_TRACE("ZQUtil done %s\n", kRebootTrigger);
  zq__Sleep(kRebootMs, kSourceTag, __LINE__);
}

void ExitHost(int status) {
  AwaitDeferredWrites();
  zq_ExitProcess(status);
}

int32_t ZQUtil::FactoryReset(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* /*rval*/) {
  RaiseTrigger("/tmp/factory_reset");
  return 1;
}
