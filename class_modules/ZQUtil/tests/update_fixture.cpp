#include "update_fixture.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "SoftwareUpdateList.h"
#include "ZQSoftwareUpdate.h"
#include "zq_timer.h"

namespace fs = std::filesystem;

UpdateTest::UpdateTest() {
  WriteFile("zqapplog.ini", "[config]\nhost=localhost\nsslport=" + std::to_string(server.Port()) + "\n");
  fs::remove_all("/updates");
  fs::create_directories("/updates");
  for (const char* trigger : {"/tmp/do_update", "/tmp/reboot", "/tmp/factory_reset"}) fs::remove(trigger);
  currentUpdateId = 0;
  assignedDeviceId = 0;
  updateCounter = 0;
  updateListener = nullptr;
  ReleaseSoftwareUpdateList();
}

UpdateTest::~UpdateTest() {
  updateListener = nullptr;
}

void UpdateTest::Start() {
  util = &New();
  Settle();
  TakeTraces();
  engine.TakeCalls();
}

ModuleTest::Object& UpdateTest::Listen() {
  Object& listener = engine.NewObject();
  updateListener = &listener;
  return listener;
}

ModuleTest::Object& UpdateTest::ListenForConnectivity() {
  Object& listener = engine.NewObject();
  Singleton().connectivityListener = &listener;
  Singleton().connectivityReported = false;
  return listener;
}

void UpdateTest::Check() {
  ASSERT_TRUE(PostToQueue(ZQ_MSG_TIMER, 0, kTimerSoftwareUpdate));
  Settle();
}

uint32_t UpdateTest::Remaining(uint32_t timer) {
  return zq_TimerTimeRemaining(Singleton().Handle(), timer, 0, 0);
}

std::string UpdateTest::TakeTraces() {
  const std::vector<TraceLine> lines = trace.Lines();
  std::string all;
  for (; tracesTaken_ < lines.size(); ++tracesTaken_) {
    const TraceLine& line = lines[tracesTaken_];
    const bool ofLightSensor =
        line.text.rfind("Light Sensor Thread", 0) == 0 || line.text == "Unable to open /dev/i2c-0";
    if (line.name == "zqutil" && !ofLightSensor) all += line.text + "\n";
  }
  return all;
}

void UpdateTest::AwaitTrace(const std::string& text) {
  for (int i = 0; i < 60000; ++i) {
    const std::vector<std::string> texts = trace.Texts();
    if (std::find(texts.begin() + static_cast<ptrdiff_t>(awaitedFrom_), texts.end(), text) != texts.end())
      return;
    usleep(1000);
  }
  throw std::runtime_error("not traced: " + text);
}

std::string UpdateTest::Update(int32_t id, const std::string& path, bool forced, const std::string& comment) {
  return "<update forced=\"" + std::string(forced ? "true" : "false") + "\" id=\"" + std::to_string(id) +
         "\" comment=\"" + comment + "\" path=\"" + path + "\"/>";
}

std::string UpdateTest::Url(const std::string& name) const {
  return "http://127.0.0.1:" + std::to_string(packages.Port()) + "/packages/" + name;
}

void UpdateTest::Device(const char* bootloaderVersion, const char* partitions) {
  StoreKey("sys.bldrver", bootloaderVersion);
  StoreKey("sys.numparts", partitions);
}

void UpdateTest::PassReboot() {
  AwaitTrace("ZQUtil done /tmp/reboot");
  AwaitModuleSleeper();
  clock.Advance(std::chrono::seconds(5));
}
