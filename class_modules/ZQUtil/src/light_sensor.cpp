#include "light_sensor.h"

#include <fcntl.h>
#include <linux/i2c-dev.h>
#include <linux/i2c.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>

#include "DimmingRule.h"
#include "ZQScreen.h"
#include "ZQUtilPersistence.h"
#include "ZQUtilTrace.h"
#include "zq_thread.h"

std::atomic<uint32_t> olddat = 0;

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/light_sensor";
constexpr char kBusFile[] = "/dev/i2c-0";
constexpr unsigned char kSensorAddress = 0x34;
constexpr uint32_t kIdleMs = 1000;
constexpr uint32_t kRampStepMs = 20;

// The sensor's one command. Block bytes: length, status, reading low, reading high, unused.
constexpr uint8_t kMeasure = 0x27;
constexpr uint8_t kBlockLength = 4;
constexpr uint8_t kReady = 0x87;
constexpr int kMostReads = 1000000;

// Threads that have begun. A thread whose number is not the last one was followed by another, whose screen
// may have taken the end request back before this one saw it: it ends all the same, so that there are never
// two for longer than a cycle.
std::atomic<uint32_t> threadsBegun = 0;

// One cycle at a time: a thread that follows one still in its ramp lets it finish, or the backlight would
// flicker between the two.
class Turn {
 public:
  Turn() : mine_(!taken.exchange(true)) {}
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
  ~Turn() {
    if (mine_) taken = false;
  }
  bool Mine() const { return mine_; }

 private:
  static std::atomic<bool> taken;
  const bool mine_;
};

std::atomic<bool> Turn::taken = false;

// An open device file.
class Device {
 public:
  explicit Device(const char* path) : fd_(open(path, O_RDWR | O_CLOEXEC)) {
    if (!Ok()) ZQUTIL_TRACE("Unable to open %s\n", path);
  }
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;
  ~Device() {
    if (fd_ >= 0) close(fd_);
  }
  // Descriptor 0 counts as a failure.
  bool Ok() const { return fd_ >= 1; }
  int Descriptor() const { return fd_; }

 private:
  const int fd_;
};

// Errors are not looked at: what a failed read leaves in the block is what the last good one put there.
void Transfer(int bus, uint8_t direction, i2c_smbus_data* block) {
  i2c_smbus_ioctl_data transfer{direction, kMeasure, I2C_SMBUS_BLOCK_DATA, block};
  ioctl(bus, I2C_SMBUS, &transfer);
}

// The reading, 0 to 65535. `answer` keeps the last one from cycle to cycle, so that a sensor that falls
// silent leaves the light as it was.
uint32_t Measure(int bus, i2c_smbus_data* answer) {
  i2c_smbus_data start{};
  start.block[0] = kBlockLength;
  Transfer(bus, I2C_SMBUS_WRITE, &start);

  answer->block[0] = kBlockLength;
  answer->block[1] = 0;  // or the answer before would pass for this one
  for (int reads = 0; reads < kMostReads; ++reads) {
    Transfer(bus, I2C_SMBUS_READ, answer);
    if (answer->block[1] == kReady) break;
  }
  return answer->block[2] + 256U * answer->block[3];
}

// The whole buffer goes out, zeros behind the text.
void WriteLevel(int backlight, uint32_t level) {
  char text[32] = {};
  std::snprintf(text, sizeof text, "%u", level);
  [[maybe_unused]] const ssize_t written = write(backlight, text, sizeof text);
}

void Apply(const DimmingPlan& plan, int backlight) {
  for (uint32_t index = 0; index < plan.writes; ++index) {
    WriteLevel(backlight, plan.Level(index));
    if (plan.paced) zq__Sleep(kRampStepMs, kSourceTag, __LINE__);
  }
}

// One measurement and what follows from it. False when a device cannot be used.
bool RunCycle(i2c_smbus_data* answer, uint32_t* steady) {
  const Device bus(kBusFile);
  if (!bus.Ok()) return false;
  if (setslaveadr(bus.Descriptor(), kSensorAddress) < 0) {
    ZQUTIL_TRACE("Unable to init jtag addr\n");
    return false;
  }
  const Device backlight(kBacklightFile);
  if (!backlight.Ok()) return false;
  const DimmingPlan plan = PlanDimming(Measure(bus.Descriptor(), answer), {olddat, *steady});
  Apply(plan, backlight.Descriptor());
  olddat = plan.after.applied;
  *steady = plan.after.steady;
  return true;
}

}  // namespace

int setslaveadr(int fd, unsigned char address) {
  return ioctl(fd, I2C_SLAVE, static_cast<unsigned long>(address)) < 0 ? -1 : 0;
}

int32_t threadAutoScreenDim(void* /*screen*/) {
  const uint32_t number = ++threadsBegun;
  ZQUTIL_TRACE("Light Sensor Thread beginning\n");
  i2c_smbus_data answer{};
  uint32_t steady = 0;
  while (!exiting && number == threadsBegun) {
    if (!bAutoMode) {
      zq__Sleep(kIdleMs, kSourceTag, __LINE__);
      continue;
    }
    const Turn turn;
    if (!turn.Mine()) {
      zq__Sleep(kRampStepMs, kSourceTag, __LINE__);
      continue;
    }
    if (!RunCycle(&answer, &steady)) return -1;
  }
  ZQUTIL_TRACE("Light Sensor Thread Ending\n");
  return 0;
}
