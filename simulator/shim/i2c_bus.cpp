#include "i2c_bus.h"

#include <linux/i2c-dev.h>
#include <linux/i2c.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

#include "hardware_file.h"
#include "light_chip.h"
#include "light_settings.h"

namespace {

constexpr char kSettingsFile[] = "/hw/light.ini";
constexpr char kReadingFile[] = "/hw/light";
constexpr int kHighestAddress = 0x7F;
// A program may poll a sensor that is not ready millions of times: what a person changes meanwhile is seen
// after so many reads.
constexpr uint32_t kReadsBetweenLooks = 1000;

// As of the last look at the settings file, by whichever thread. One value each: a moment of two mixed
// settings is what a person who edits sees anyway.
constinit std::atomic<uint32_t> notReady{0};
constinit std::atomic<bool> fails{false};
constinit std::atomic<int> chipAddress{0x34};
constinit std::atomic<uint32_t> transferUs{0};
// The last measurement.
constinit std::atomic<uint16_t> measured{0};

void LookAtSettings() {
  char text[2048];
  const LightSettings now = ParseLightSettings({text, ReadHardware(kSettingsFile, text, sizeof(text))});
  notReady = now.notReady;
  fails = now.fails;
  chipAddress = now.address;
  transferUs = now.transferUs;
}

uint16_t MeasureLight() {
  char text[64];
  uint16_t reading = measured;
  ParseLightReading({text, ReadHardware(kReadingFile, text, sizeof(text))}, &reading);
  measured = reading;
  return reading;
}

void TakeTransferTime() {
  const uint32_t us = transferUs;
  if (us == 0) return;
  const timespec time{static_cast<time_t>(us / 1000000), static_cast<long>(us % 1000000) * 1000};
  syscall(SYS_nanosleep, &time, nullptr);
}

int Refuse(int reason) {
  errno = reason;
  return -1;
}

int Select(OpenDevice& bus, unsigned long address) {
  if (address > kHighestAddress) return Refuse(EINVAL);
  LookAtSettings();
  if (static_cast<int>(address) != chipAddress) return Refuse(ENXIO);
  bus.address = static_cast<int>(address);
  return 0;
}

int StartMeasurement(OpenDevice& bus, const uint8_t* block) {
  if (!StartsMeasurement(block)) return Refuse(EINVAL);
  bus.reads = 0;
  return 0;
}

int AnswerMeasurement(OpenDevice& bus, uint8_t* block) {
  const bool ready = bus.reads++ >= notReady;
  AnswerLight(ready, ready ? MeasureLight() : measured.load(), block);
  return 0;
}

int Transfer(OpenDevice& bus, const i2c_smbus_ioctl_data& transfer) {
  if (transfer.size != I2C_SMBUS_BLOCK_DATA || transfer.data == nullptr) return Refuse(EOPNOTSUPP);
  const bool reads = transfer.read_write == I2C_SMBUS_READ;
  if (!reads || bus.reads % kReadsBetweenLooks == 0) LookAtSettings();
  TakeTransferTime();
  if (bus.address != chipAddress || transfer.command != kLightMeasure) return Refuse(ENXIO);
  if (fails) {
    ++bus.reads;
    return Refuse(EIO);
  }
  return reads ? AnswerMeasurement(bus, transfer.data->block) : StartMeasurement(bus, transfer.data->block);
}

}  // namespace

bool IsI2cRequest(unsigned long request) {
  return request == I2C_SLAVE || request == I2C_SLAVE_FORCE || request == I2C_FUNCS || request == I2C_SMBUS;
}

int AnswerI2c(OpenDevice& bus, unsigned long request, void* argument) {
  const int before = errno;
  int result = 0;
  if (request == I2C_SMBUS) {
    result =
        argument != nullptr ? Transfer(bus, *static_cast<i2c_smbus_ioctl_data*>(argument)) : Refuse(EFAULT);
  } else if (request == I2C_FUNCS) {
    *static_cast<unsigned long*>(argument) = I2C_FUNC_SMBUS_BLOCK_DATA;
  } else {
    result = Select(bus, reinterpret_cast<unsigned long>(argument));
  }
  if (result == 0) errno = before;
  return result;
}
