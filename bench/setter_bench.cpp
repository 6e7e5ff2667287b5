// What a setter costs the script thread while the disk is well, and while every flush of it takes a second:
// the 99th percentile of each, as a ratio. Runs on a simulated device, and starts itself again for each disk.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "ZQUtilEntryPoints.h"
#include "bare_engine.h"
#include "fault.h"
#include "ratio.h"
#include "temp_dir.h"

namespace {

constexpr int kCalls = 2000;

double Percentile99(std::vector<double>& seconds) {
  std::sort(seconds.begin(), seconds.end());
  return seconds[seconds.size() * 99 / 100];
}

// The 99th percentile, in microseconds, of calls of one method, a little apart as a script's are.
template <typename Call>
double Measure(const Call& call) {
  std::vector<double> seconds;
  for (int i = 0; i < kCalls; ++i) {
    seconds.push_back(bench::Seconds([&] { call(i); }));
    usleep(300);
  }
  return Percentile99(seconds) * 1e6;
}

// On the device. Prints the percentiles and leaves at once: nobody waits for a thousand stalled writes.
int MeasureHere(bool stalled) {
  BareEngine engine;
  MM_InitWrapper(engine.Table(), BareEngine::TableBytes());
  BareEngine::Object& util = engine.Construct();
  usleep(200000);
  const Fault fault(std::getenv("ZQ_DEVICE"), stalled ? "fsync:all:stall:1000,fdatasync:all:stall:1000" : "");
  const zq_Value application = engine.String("app");
  const zq_Value key = engine.String("key");
  std::vector<zq_Value> values;
  for (int i = 0; i < kCalls; ++i) values.push_back(engine.String(std::to_string(i)));
  const double brightness = Measure([&](int i) { engine.Call(util, "setBrightness", {values[i]}, nullptr); });
  const double setting = Measure([&](int i) {
    engine.Call(util, "setIniSetting", {application, key, values[i]}, nullptr);
  });
  std::printf("%.3f %.3f\n", brightness, setting);
  std::fflush(stdout);
  _exit(0);
}

struct Percentiles {
  double brightness = 0;
  double setting = 0;
};

Percentiles MeasureOnDevice(const char* disk) {
  const TempDir folder;
  const std::string command = std::string("ZQ_TRACE=off '" ZQ_SIM_PROGRAM "' run '") + (folder / "device") +
                              "' -- '" + std::filesystem::read_symlink("/proc/self/exe").string() + "' " +
                              disk;
  Percentiles result;
  std::FILE* const output = popen(command.c_str(), "re");
  if (output == nullptr || std::fscanf(output, "%lf %lf", &result.brightness, &result.setting) != 2) {
    std::puts("the measurement on the device failed");
    std::exit(1);
  }
  pclose(output);
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1) return MeasureHere(std::string(argv[1]) == "stalled");
  const Percentiles well = MeasureOnDevice("well");
  const Percentiles stalled = MeasureOnDevice("stalled");
  std::printf("setBrightness p99: %.1f us, stalled %.1f us\n", well.brightness, stalled.brightness);
  std::printf("setIniSetting p99: %.1f us, stalled %.1f us\n", well.setting, stalled.setting);
  const bool kept = bench::Report("setBrightness, stalled disk against a healthy one",
                                  stalled.brightness / well.brightness, 2);
  return bench::Report("setIniSetting, stalled disk against a healthy one", stalled.setting / well.setting,
                       2) &&
                 kept
             ? 0
             : 1;
}
