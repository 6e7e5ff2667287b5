// What automatic dimming costs: a step against a bare loop of the same system calls, and the processor time of the
// light-sensor thread with dim mode off and on. Runs on a simulated device, and starts itself again there.
#include <fcntl.h>
#include <linux/i2c-dev.h>
#include <linux/i2c.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <thread>

#include "ZQScreen.h"
#include "light_sensor.h"
#include "ratio.h"
#include "temp_dir.h"
#include "zq_clock.h"
#include "zq_thread.h"

namespace {

constexpr int kRounds = 15;
constexpr uint32_t kRampSteps = 2000;

// Sleeps take no time, so that a ramp costs what it does and not what it waits; the last one of a ramp asks the
// thread to end.
class RampClock : public zq_Clock {
 public:
  uint64_t MonotonicNs() override { return 0; }
  timespec Wall() override { return {}; }
  void Sleep(uint64_t) override {
    if (++sleeps_ % kRampSteps == 0) exiting = true;
  }
  int PollTimeoutMs(uint64_t) override { return 0; }
  void AddWaker(int) override {}
  void RemoveWaker(int) override {}

 private:
  uint32_t sleeps_ = 0;
};

void SetHardware(const char* name, const std::string& text) {
  WriteFile(std::getenv("ZQ_DEVICE") + std::string("/hw/") + name, text);
}

double ThreadSeconds(clockid_t clock) {
  timespec used{};
  clock_gettime(clock, &used);
  return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) / 1e9;
}

// One cycle of the thread's, a ramp.
void RampByThread() {
  olddat = 0;
  exiting = false;
  threadAutoScreenDim(nullptr);
}

// The same calls and nothing else.
void RampBare() {
  const int bus = open("/dev/i2c-0", O_RDWR | O_CLOEXEC);
  ioctl(bus, I2C_SLAVE, 0x34UL);
  const int backlight = open("/proc/blctrl", O_RDWR | O_CLOEXEC);
  i2c_smbus_data data{};
  data.block[0] = 4;
  i2c_smbus_ioctl_data transfer{I2C_SMBUS_WRITE, 0x27, I2C_SMBUS_BLOCK_DATA, &data};
  ioctl(bus, I2C_SMBUS, &transfer);
  transfer.read_write = I2C_SMBUS_READ;
  ioctl(bus, I2C_SMBUS, &transfer);
  char text[32] = "1500";
  for (uint32_t level = 0; level < kRampSteps; ++level) {
    if (write(backlight, text, sizeof text) < 0) std::abort();
  }
  close(backlight);
  close(bus);
}

// The processor time of a piece of work: a crowded machine does not count.
template <typename Work>
double Used(const Work& work) {
  const double before = ThreadSeconds(CLOCK_THREAD_CPUTIME_ID);
  work();
  return ThreadSeconds(CLOCK_THREAD_CPUTIME_ID) - before;
}

// The share of a processor that the thread takes over two seconds.
double Share(bool dimming) {
  exiting = false;
  bAutoMode = dimming;
  std::thread thread(threadAutoScreenDim, nullptr);
  clockid_t clock = 0;
  pthread_getcpuclockid(thread.native_handle(), &clock);
  usleep(500000);
  const double before = ThreadSeconds(clock);
  const double share = [&] {
    const double wall = bench::Seconds([] { usleep(2000000); });
    return (ThreadSeconds(clock) - before) / wall;
  }();
  exiting = true;
  thread.join();
  return share;
}

int MeasureHere() {
  SetHardware("light", std::to_string(kRampSteps));
  SetHardware("light.ini", "");
  RampClock clock;
  zq_ClockSet(&clock);
  bAutoMode = true;
  bench::Pair ramp;
  for (int round = 0; round < kRounds; ++round) {
    ramp.ours = std::min(ramp.ours, Used(RampByThread));
    ramp.theirs = std::min(ramp.theirs, Used(RampBare));
  }
  zq_ClockSet(nullptr);
  std::printf("a step of a ramp: %.2f us, bare calls %.2f us\n", ramp.ours * 1e6 / kRampSteps,
              ramp.theirs * 1e6 / kRampSteps);
  const bool kept = bench::Report("a step of a ramp against the bare system calls", ramp.Ratio(), 1.1);

  SetHardware("light", "2000");
  std::printf("processor time of the thread, dim mode off:          %6.3f %%\n", Share(false) * 100);
  std::printf("  on, steady, a bus that takes no time:              %6.3f %%\n", Share(true) * 100);
  SetHardware("light.ini", "transfer_us = 700");
  std::printf("  on, steady, 700 us a transfer as on a wire:        %6.3f %%\n", Share(true) * 100);
  SetHardware("light.ini", "transfer_us = 700\nready = after 100 reads");
  std::printf("  on, steady, and 100 reads until it is ready:       %6.3f %%\n", Share(true) * 100);
  std::fflush(stdout);
  return kept ? 0 : 1;
}

}  // namespace

int main() {
  if (std::getenv("ZQ_DEVICE") != nullptr) return MeasureHere();
  const TempDir folder("/dev/shm");
  const std::string command = "ZQ_TRACE=off '" ZQ_SIM_PROGRAM "' run '" + (folder / "device") + "' -- '" +
                              std::filesystem::read_symlink("/proc/self/exe").string() + "'";
  const int status = std::system(command.c_str());
  return status == 0 ? 0 : 1;
}
