#include "ZQUtil.h"

#include <sys/stat.h>

#include <limits>

#include "SingletonHold.h"
#include "SoftwareUpdateList.h"
#include "ZQDateTime.h"
#include "ZQNetwork.h"
#include "ZQScreen.h"
#include "ZQSoftwareUpdate.h"
#include "ZQUtilEntryPoints.h"
#include "ZQUtilMethodTable.h"
#include "ZQUtilPersistence.h"
#include "ZQUtilTrace.h"
#include "audio_volume.h"
#include "mm_env.h"
#include "zq_file.h"
#include "zq_ini.h"
#include "zqwww.h"

std::atomic<int> ZQUtilTraceInstance = 0;
std::atomic<int32_t> ZQUtilInstanceCount = 0;
std::atomic<uint32_t> ZQUtilMsgQHandle = 0;

ZQUtil* ZQUtil::m_pInstance = nullptr;
std::atomic<int32_t> ZQUtil::softwareUpdateCheckTime = 1800000;

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQUtil";
// In place of the count while the singleton is being destroyed.
constexpr int32_t kEnding = std::numeric_limits<int32_t>::min();
// Of the threads that find no singleton one builds it; the others wait.
enum Life : uint32_t { kNone, kBeginning, kLiving };
std::atomic<uint32_t> g_life = kNone;

constexpr char kDeviceManagementLibrary[] = "/brimvale/sorel/libzqdms.so";

int32_t Setting(const char* key, int32_t fallback) {
  return zq_GetINIFileInt(kConfigSection, key, fallback, kSettingsFile);
}

void TraceVolumeInfo() {
  uint32_t freeKb = 0;
  uint32_t availableKb = 0;
  if (!zq_GetVolumeInfo("/media", &freeKb, &availableKb)) {
    ZQUTIL_TRACE("Volume Info Failed\n");
    return;
  }
  // Bytes in 32-bit arithmetic: volumes of 2 GiB and more show wrapped, which only the trace sees.
  ZQUTIL_TRACE("Volume Info: %d bytes free, %d bytes available\n", static_cast<int32_t>(freeKb * 1024U),
               static_cast<int32_t>(availableKb * 1024U));
}

// The end of the building, also of one that found no memory: the next thread that asks builds then.
class Beginning {
 public:
  Beginning() = default;
  Beginning(const Beginning&) = delete;
  Beginning& operator=(const Beginning&) = delete;
  ~Beginning() {
    g_life = ZQUtil::m_pInstance != nullptr ? kLiving : kNone;
    g_life.notify_all();
  }
};

// Whoever calls has counted itself: the singleton does not go meanwhile.
void BuildOrAwait() {
  for (;;) {
    uint32_t life = kNone;
    if (g_life.compare_exchange_strong(life, kBeginning)) {
      const Beginning beginning;
      ZQUtil::m_pInstance = new ZQUtil;
      return;
    }
    if (life == kLiving) return;
    g_life.wait(kBeginning);
  }
}

}  // namespace

ZQUtil* ZQUtil::Instance() {
  int32_t count = ZQUtilInstanceCount;
  do {
    if (count == kEnding) return nullptr;
  } while (!ZQUtilInstanceCount.compare_exchange_weak(count, count + 1));
  BuildOrAwait();
  if (ZQUtilTraceInstance != 0) ZQUTIL_TRACE("Creating ZQUtil Instance, count is %d\n", count + 1);
  return m_pInstance;
}

void ZQUtil::Dereference() {
  int32_t count = --ZQUtilInstanceCount;
  if (ZQUtilTraceInstance != 0) ZQUTIL_TRACE("Destroying ZQUtil Instance, count is %d\n", count);
  if (count > 0) return;
  // Unless a listener's script on the queue thread has just taken a share.
  if (!ZQUtilInstanceCount.compare_exchange_strong(count, kEnding)) return;
  delete m_pInstance;
  m_pInstance = nullptr;
  g_life = kNone;
  ZQUtilInstanceCount = count;
}

ZQUtil::ZQUtil() : zq_MsgQ(nullptr, nullptr) {
  httpPrepared = zqwww_init() == 1;
  // What a singleton before this one has set is on its way to the file that is read now.
  AwaitConfigWrites();

  const int32_t boardContrast = Setting("contrast", 17);
  const int32_t phoneVolume = Setting("phoneVolume", 75);
  const int32_t mediaVolume = Setting("mediaVolume", 75);
  const int32_t micVolume = Setting("micVolume", 50);
  const int32_t brightness = Setting("brightness", 255);
  softwareUpdateCheckTime = Setting("updateTime", 1800000);

  // With the device-management library installed, updates are its business and periodic checks are held back.
  struct stat status = {};
  updateAvailable = stat(kDeviceManagementLibrary, &status) == 0;

  if (ZQUtilTraceInstance == 0) ZQUtilTraceInstance = zq_TraceCreate("zqutil", kSourceTag, __LINE__);
  ZQUTIL_TRACE("ZQUtil Trace Instance Init\n");

  network = new ZQNetwork(true);
  audioVolume = new ZQAudioVolume(true, mediaVolume, phoneVolume, micVolume);
  screen = new ZQScreen(true, brightness, boardContrast);
  dateTime = new ZQDateTime(true);
  ZQUTIL_TRACE("ZQUtil Created All Objects\n");
  BeginSingletonHolds(this);

  Create(nullptr, 0);
  AsyncConfigWrite(kConfigBrightness);
  AsyncConfigWrite(kConfigAudio);

  if (zqUtil_applogLib != nullptr) {
    appLogActivity = reinterpret_cast<decltype(appLogActivity)>(
        zq_GetProcAddress(zqUtil_applogLib, "ZQLogApplicationActivity"));
  }
  TraceVolumeInfo();
  ZQUTIL_TRACE("I do not think I am running on a tablet\n");
}

ZQUtil::~ZQUtil() {
  ZQUTIL_TRACE("ZQUtil Destructor Begin\n");
  // What was posted until now is still carried out, with the parts that it needs in place. After this no handler
  // runs that could meet a part that is gone, and posts are refused.
  Drain();
  EndSingletonHolds();
  ReleaseSoftwareUpdateList();
  delete network;
  network = nullptr;
  delete audioVolume;
  audioVolume = nullptr;
  delete screen;
  screen = nullptr;
  delete dateTime;
  dateTime = nullptr;
  if (httpPrepared) zqwww_term();
  Destroy(false);
  ZQUTIL_TRACE("ZQUtil Destructor End\n");
  zq_TraceRelease(ZQUtilTraceInstance.exchange(0));
}

bool PostToModule(uint32_t type, uintptr_t param) {
  const uint32_t queue = ZQUtilMsgQHandle;
  return zq__MsgCreateCommonAndSend(queue, queue, type, 0, param, 0, false, 2, kSourceTag, __LINE__);
}

namespace {

int32_t FinalizeNothing(void* /*self*/) {
  return 1;
}

}  // namespace

int32_t ZQUtil_constructor(void* self, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  engine::HostLog("ZQUtil Constructor start\n");
  if (const auto setFinalizer = engine::SetFinalizer()) setFinalizer(self, ZQUtil_finalizer);
  void* singleton = ZQUtil::Instance();
  if (singleton == nullptr) {
    if (const auto setFinalizer = engine::SetFinalizer()) setFinalizer(self, FinalizeNothing);
    return 0;
  }
  if (const auto setPrivate = engine::SetPrivate()) setPrivate(self, &singleton);
  if (rval != nullptr) *rval = reinterpret_cast<zq_Value>(self);
  engine::HostLog("ZQUtil Constructor end\n");
  return 1;
}

int32_t ZQUtil_finalizer(void* /*self*/) {
  engine::HostLog("ZQUtil Finalizer start\n");
  ZQUtil::Dereference();
  engine::HostLog("ZQUtil Finalizer end\n");
  return 1;
}
