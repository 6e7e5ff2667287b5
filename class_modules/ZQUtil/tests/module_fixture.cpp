#include "module_fixture.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <thread>

#include "ZQNetworkRestart.h"
#include "ZQSoftwareUpdate.h"
#include "ZQUtilEntryPoints.h"
#include "ZQUtilPersistence.h"
#include "light_sensor.h"
#include "loopback_listener.h"
#include "nvram.h"
#include "zq_ini.h"
#include "zq_thread.h"

namespace fs = std::filesystem;

namespace {

constexpr char kStoreConfig[] = "/etc/fw_env.config";
constexpr char kStoreConfigAside[] = "/etc/fw_env.config.aside";
// How long the threads that a test leaves behind are waited for. Some stay: a module that was loaded twice keeps a library.
constexpr std::chrono::seconds kThreadsEnd{2};

ptrdiff_t CountThreads() {
  // With a program's first thread a sanitizer starts one of its own.
  static const bool hadOne = (std::thread([] {}).join(), true);
  static_cast<void>(hadOne);
  return std::distance(fs::directory_iterator("/proc/self/task"), fs::directory_iterator());
}

}  // namespace

void ResetDevice() {
  for (const auto& entry : fs::directory_iterator(".")) {
    if (entry.path().extension() == ".ini") fs::remove(entry.path());
  }
  // A check for updates ends at once.
  WriteFile("zqapplog.ini", "[config]\nhost=127.0.0.1\nsslport=" + std::to_string(RefusingPort()) + "\n");
  fs::remove_all("cache");
  fs::create_directory("cache");
  for (const char* copy : {"/var/lib/zq/nvram0", "/var/lib/zq/nvram1"}) fs::remove(copy);
  for (const char* trigger : {"/tmp/do_S12", "/tmp/done_S12"}) fs::remove(trigger);
  WriteFile("/proc/blctrl", "0");
  // No light sensor: the backlight is brightness's alone, unless a test puts one in.
  fs::remove(OnThisMachine("/dev/i2c-0"));
  for (const char* variable : {"http_proxy", "no_proxy"}) unsetenv(variable);
}

uint16_t RefusingPort() {
  static const LoopbackListener nobody("127.0.0.1", LoopbackListener::Mode::kRefusing);
  return nobody.Port();
}

std::string OnThisMachine(const std::string& devicePath) {
  return std::getenv("ZQ_DEVICE") + devicePath;
}

std::string StoredSetting(const std::string& key, const std::string& file) {
  char value[1025] = {};
  zq_GetINIFileString("config", key.c_str(), "<none>", value, 1024, file.c_str());
  return value;
}

std::string StoredKey(const std::string& key) {
  const int store = nvram_open(0, 0);
  if (store == -1) return "<closed>";
  char value[2048] = {};
  const int result = nvram_read_key(store, nullptr, key.c_str(), value, sizeof value);
  nvram_close(store);
  return result == 0 ? value : "<none>";
}

void StoreKey(const std::string& key, const std::string& value) {
  const int store = nvram_open(0, 0);
  ASSERT_NE(store, -1);
  EXPECT_EQ(nvram_write_key(store, nullptr, key.c_str(), value.c_str()), 0);
  nvram_close(store);
}

ClosedKeyStore::ClosedKeyStore() {
  fs::rename(kStoreConfig, kStoreConfigAside);
}

ClosedKeyStore::~ClosedKeyStore() {
  fs::rename(kStoreConfigAside, kStoreConfig);
}

ModuleTest::ModuleTest() : threadsBefore_(CountThreads()) {
  ResetDevice();
  ZQUtil::myDeviceID = 0;
}

ModuleTest::~ModuleTest() {
  while (!live_.empty()) Drop(*live_.back());
  Unload();
  EndLightSensor();
  while (!zq_ThreadAwaitEnd(threadCheckForAvailableUpdates, 1)) clock.Advance(std::chrono::seconds(1));
  EndRestarts();
  // The last ones, of libraries too: what they still trace or post is not the next test's.
  const auto deadline = std::chrono::steady_clock::now() + kThreadsEnd;
  while (CountThreads() > threadsBefore_ && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

void ModuleTest::EndLightSensor() {
  while (!zq_ThreadAwaitEnd(threadAutoScreenDim, 1)) clock.Advance(std::chrono::seconds(1));
}

void ModuleTest::EndRestarts() {
  while (!zq_ThreadAwaitEnd(threadRestartNetwork, 1)) {
    WriteFile("/tmp/done_S12", "1");
    clock.Advance(std::chrono::seconds(1));
  }
}

int32_t ModuleTest::Load(uint32_t bytes) {
  loaded_ = true;
  MM_Load();
  return MM_InitWrapper(engine.Table(), bytes);
}

ModuleTest::Object& ModuleTest::New() {
  if (!loaded_) Load();
  Object& object = engine.Construct();
  if (object.finalizer != nullptr) live_.push_back(&object);
  return object;
}

void ModuleTest::Drop(Object& object) {
  live_.erase(std::remove(live_.begin(), live_.end(), &object), live_.end());
  BareEngine::Finalize(object);
}

void ModuleTest::Unload() {
  while (!live_.empty()) Drop(*live_.back());
  if (!loaded_) return;
  MM_TermWrapper();
  MM_Unload();
  loaded_ = false;
}

void ModuleTest::Settle() {
  if (ZQUtil::m_pInstance != nullptr) AwaitIdle(ZQUtil::m_pInstance->Handle());
  // A check posts its result.
  ASSERT_TRUE(zq_ThreadAwaitEnd(threadCheckForAvailableUpdates, 60000));
  if (ZQUtil::m_pInstance != nullptr) AwaitIdle(ZQUtil::m_pInstance->Handle());
  ASSERT_TRUE(zq_ThreadAwaitEnd(threadConfigWrite, 60000));
}

bool ModuleTest::PostToQueue(uint32_t type, uintptr_t param2, uint32_t param1) {
  const uint32_t queue = ZQUtil::m_pInstance->Handle();
  return zq__MsgCreateCommonAndSend(queue, queue, type, param1, param2, 0, false, 2, "test", __LINE__);
}

std::string ModuleTest::Traces() const {
  const std::vector<std::string> texts = trace.Texts();
  std::string all;
  for (size_t i = traceStart_; i < texts.size(); ++i) {
    const bool ofLightSensor =
        texts[i].rfind("Light Sensor Thread", 0) == 0 || texts[i] == "Unable to open /dev/i2c-0";
    if (!ofLightSensor) all += texts[i] + "\n";
  }
  return all;
}

std::string ModuleTest::TracesWithoutNews() const {
  constexpr std::string_view kNews = "ZQUtil Socket got a New Interfaces notification\n";
  std::string all = Traces();
  for (size_t at = all.find(kNews); at != std::string::npos; at = all.find(kNews))
    all.erase(at, kNews.size());
  return all;
}
