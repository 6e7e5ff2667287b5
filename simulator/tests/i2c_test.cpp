// The light sensor's bus, as a program on the device meets it through the kernel's interface.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/i2c-dev.h>
#include <linux/i2c.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "temp_dir.h"

namespace {

std::string Hardware(const std::string& name) {
  return std::string(std::getenv("ZQ_DEVICE")) + "/hw/" + name;
}

class I2cTest : public testing::Test {
 protected:
  I2cTest() {
    WriteFile(Hardware("light.ini"), "");
    WriteFile(Hardware("light"), "513");
    bus = open("/dev/i2c-0", O_RDWR | O_CLOEXEC);
  }
  ~I2cTest() override { close(bus); }

  // 0, or the error.
  int Select(unsigned long address) const { return ioctl(bus, I2C_SLAVE, address) == 0 ? 0 : errno; }
  int Transfer(uint8_t direction, uint8_t command = 0x27, uint32_t size = I2C_SMBUS_BLOCK_DATA) {
    i2c_smbus_ioctl_data transfer{direction, command, size, &data};
    return ioctl(bus, I2C_SMBUS, &transfer) == 0 ? 0 : errno;
  }
  int Start() {
    data = {};
    data.block[0] = 4;
    return Transfer(I2C_SMBUS_WRITE);
  }
  // "status reading" of a read, or "error N".
  std::string Read() {
    data = {};
    const int error = Transfer(I2C_SMBUS_READ);
    if (error != 0) return "error " + std::to_string(error);
    return (data.block[1] == 0x87 ? "ready " : "busy ") + std::to_string(data.block[2] + 256 * data.block[3]);
  }

  int bus;
  i2c_smbus_data data = {};
};

TEST_F(I2cTest, MeasuresTheLightThatAPersonSets) {
  ASSERT_GE(bus, 0);
  EXPECT_EQ(Select(0x34), 0);
  EXPECT_EQ(Start(), 0);
  EXPECT_EQ(Read(), "ready 513");
  EXPECT_EQ(data.block[0], 4);
  for (int reading : {0, 65535, 300, 301}) {
    WriteFile(Hardware("light"), std::to_string(reading) + "\n");
    EXPECT_EQ(Read(), "ready " + std::to_string(reading));
  }
  WriteFile(Hardware("light"), "");
  EXPECT_EQ(Read(), "ready 301") << "an editor may be at work";
  std::filesystem::remove(Hardware("light"));
  EXPECT_EQ(Read(), "ready 301");
}

TEST_F(I2cTest, IsReadyAfterTheReadsThatAPersonSets) {
  Select(0x34);
  Read();
  WriteFile(Hardware("light.ini"), "ready = after 2 reads");
  WriteFile(Hardware("light"), "20");
  EXPECT_EQ(Start(), 0);
  EXPECT_EQ(Read(), "busy 513") << "the measurement before";
  EXPECT_EQ(Read(), "busy 513");
  EXPECT_EQ(Read(), "ready 20");
  EXPECT_EQ(Start(), 0);
  EXPECT_EQ(Read(), "busy 20");
}

TEST_F(I2cTest, APollThatNeverEndsSeesANewSetting) {
  Select(0x34);
  WriteFile(Hardware("light.ini"), "ready = never");
  Start();
  for (int i = 0; i < 5000; ++i) ASSERT_EQ(Read().substr(0, 4), "busy");
  WriteFile(Hardware("light.ini"), "ready = at once");
  int reads = 0;
  while (Read() != "ready 513") ASSERT_LT(++reads, 1001);
}

TEST_F(I2cTest, FailsWhenAPersonWantsIt) {
  Select(0x34);
  WriteFile(Hardware("light.ini"), "transfers = fail");
  EXPECT_EQ(Start(), EIO);
  EXPECT_EQ(Read(), "error " + std::to_string(EIO));
  WriteFile(Hardware("light.ini"), "transfers = work");
  EXPECT_EQ(Start(), 0);
}

TEST_F(I2cTest, RefusesWhatIsNotThere) {
  EXPECT_EQ(Start(), ENXIO) << "no chip selected";
  EXPECT_EQ(Select(0x35), ENXIO);
  EXPECT_EQ(Select(0x134), EINVAL);
  EXPECT_EQ(Select(0x34), 0);
  EXPECT_EQ(Transfer(I2C_SMBUS_READ, 0x28), ENXIO);
  EXPECT_EQ(Transfer(I2C_SMBUS_READ, 0x27, I2C_SMBUS_BYTE_DATA), EOPNOTSUPP);
  data.block[0] = 3;
  EXPECT_EQ(Transfer(I2C_SMBUS_WRITE), EINVAL);
  EXPECT_EQ(ioctl(bus, I2C_SMBUS, nullptr), -1);
  WriteFile(Hardware("light.ini"), "address = 0x35");
  EXPECT_EQ(Select(0x34), ENXIO);
  EXPECT_EQ(Select(0x35), 0);
}

TEST_F(I2cTest, EachOpeningSelectsItsOwnChip) {
  Select(0x34);
  close(bus);
  bus = open("/dev/i2c-0", O_RDWR | O_CLOEXEC);
  EXPECT_EQ(Start(), ENXIO);
}

TEST_F(I2cTest, ANumberThatBecameAnotherFileIsNoBus) {
  const int other = open("/dev/null", O_RDWR | O_CLOEXEC);
  EXPECT_EQ(dup2(other, bus), bus);
  close(other);
  EXPECT_EQ(Select(0x34), ENOTTY);
}

TEST_F(I2cTest, OtherRequestsAreTheMachines) {
  int waiting = -1;
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
  EXPECT_EQ(write(ends[1], "abc", 3), 3);
  EXPECT_EQ(ioctl(ends[0], FIONREAD, &waiting), 0);
  EXPECT_EQ(waiting, 3);
  close(ends[0]);
  close(ends[1]);
}

TEST_F(I2cTest, ATransferTakesTheTimeThatAPersonSets) {
  WriteFile(Hardware("light.ini"), "transfer_us = 2000");
  Select(0x34);
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 10; ++i) Read();
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(20));
}

// The backlight's file, as the thread that follows the light uses it.
TEST(DriverOpenedForBoth, KeepsItsValueUntilAWriteAndTakesEachAsTheWhole) {
  WriteFile("/proc/blctrl", "100");
  const int backlight = open("/proc/blctrl", O_RDWR | O_CLOEXEC);
  ASSERT_GE(backlight, 0);
  EXPECT_EQ(ReadFile("/proc/blctrl"), "100");
  char value[8] = {};
  EXPECT_EQ(read(backlight, value, sizeof value), 3);
  EXPECT_STREQ(value, "100");
  for (const std::string text : {"42", "1234", "7"}) {
    EXPECT_EQ(write(backlight, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    EXPECT_EQ(ReadFile("/proc/blctrl"), text);
  }
  close(backlight);
  EXPECT_EQ(ReadFile("/proc/blctrl"), "7");
}

TEST(DriverOpenedForBoth, ANumberThatBecameAPlainFileIsOne) {
  const int backlight = open("/proc/blctrl", O_RDWR | O_CLOEXEC);
  WriteFile("/tmp/plain", "");
  const int plain = open("/tmp/plain", O_RDWR | O_CLOEXEC);
  EXPECT_EQ(dup2(plain, backlight), backlight);
  EXPECT_EQ(write(backlight, "ab", 2), 2);
  EXPECT_EQ(write(backlight, "cd", 2), 2);
  EXPECT_EQ(ReadFile("/tmp/plain"), "abcd");
  close(plain);
  close(backlight);
}

}  // namespace
