// The light-sensor thread on a simulated board, step by step of the clock.
#include "light_sensor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <thread>

#include "ZQScreen.h"
#include "bus_calls.h"
#include "child_process.h"
#include "manual_clock.h"
#include "module_fixture.h"
#include "zq_thread.h"

namespace fs = std::filesystem;
using std::chrono::milliseconds;

namespace {

constexpr char kBus[] = "/dev/i2c-0";
constexpr char kBacklight[] = "/proc/blctrl";

// What the person at the board does.
void SetLight(int reading) {
  WriteFile(OnThisMachine("/hw/light"), std::to_string(reading));
}
void SetSensor(const std::string& settings) {
  WriteFile(OnThisMachine("/hw/light.ini"), settings);
}

class LightSensorTest : public testing::Test {
 protected:
  LightSensorTest() {
    ResetDevice();
    WriteFile(OnThisMachine(kBus), "");
    SetSensor("");
    SetLight(0);
    olddat = 0;
    exiting = false;
    bAutoMode = false;
  }
  ~LightSensorTest() override {
    exiting = true;
    while (!zq_ThreadAwaitEnd(threadAutoScreenDim, 1)) clock.Advance(std::chrono::seconds(1));
    exiting = false;
  }

  static void Begin() {
    ASSERT_NE(zq__beginthread(threadAutoScreenDim, nullptr, nullptr, "test", __LINE__), 0U);
  }
  // Waits until a thread sleeps, and gives the backlight's bytes.
  std::string AtNextSleep() {
    clock.AwaitSleepers(1);
    return ReadFile(kBacklight);
  }
  // Lets that many steps of a ramp go by, 20 ms each; the levels that they found, comma-separated.
  std::string Ramp(int steps) {
    std::string levels;
    for (int i = 0; i < steps; ++i) {
      levels += std::string(AtNextSleep().c_str()) + ",";
      EXPECT_EQ(clock.ToNextWake(), milliseconds(20));
      clock.Advance(milliseconds(20));
    }
    return levels;
  }
  // All that the thread traced, "begin", "end" or the text itself.
  std::string Life() const {
    std::string all;
    for (const std::string& text : trace.Texts()) all += text + "\n";
    return all;
  }
  static bool Ended() { return zq_ThreadAwaitEnd(threadAutoScreenDim, 60000); }
  // Asks a thread that sleeps in a ramp to end, in the cycle that follows the ramp.
  static void EndAfterTheNextMeasurement() {
    AtNextSelection([] { exiting = true; });
  }
  // Dim mode off, seen by a thread that spins: it is asleep afterwards.
  void Rest() {
    bAutoMode = false;
    clock.AwaitSleepers(1);
  }

  ManualClock clock;
  TraceCapture trace;
};

std::string Levels(int from, int to) {
  std::string levels;
  for (int x = from; x != to; x += from < to ? 1 : -1) levels += std::to_string(x * 3 / 4) + ",";
  return levels;
}

TEST_F(LightSensorTest, WithDimmingOffItOnlySleepsInSecondsAndTouchesNoDevice) {
  SetLight(500);
  fs::remove(OnThisMachine(kBus));  // a touch would end it
  Begin();
  for (int second = 0; second < 50; ++second) {
    EXPECT_EQ(AtNextSleep(), "0");
    EXPECT_EQ(clock.ToNextWake(), milliseconds(1000));
    clock.Advance(milliseconds(1000));
  }
  clock.AwaitSleepers(1);
  EXPECT_EQ(clock.Elapsed(), std::chrono::seconds(50));
  exiting = true;
  clock.Advance(std::chrono::seconds(1));
  EXPECT_TRUE(Ended());
  EXPECT_EQ(Life(), "Light Sensor Thread beginning\nLight Sensor Thread Ending\n");
}

TEST_F(LightSensorTest, RampsUpThroughEveryLevelAndStopsOneShort) {
  SetLight(100);
  bAutoMode = true;
  Begin();
  EXPECT_EQ(Ramp(99), Levels(0, 99));
  EXPECT_STREQ(AtNextSleep().c_str(), "74");
  EXPECT_EQ(olddat, 0U) << "in force after the ramp";
  bAutoMode = false;
  clock.Advance(milliseconds(20));
  clock.AwaitSleepers(1);
  EXPECT_EQ(olddat, 100U);
  EXPECT_STREQ(ReadFile(kBacklight).c_str(), "74");
}

TEST_F(LightSensorTest, AppliesTheReadingItselfOnceItIsSteady) {
  olddat = 95;
  SetLight(100);
  bAutoMode = true;
  Begin();
  while (olddat != 100) std::this_thread::yield();
  Rest();
  EXPECT_STREQ(ReadFile(kBacklight).c_str(), "75");
}

TEST_F(LightSensorTest, RampsDown) {
  olddat = 300;
  SetLight(279);
  bAutoMode = true;
  Begin();
  EXPECT_EQ(Ramp(20), Levels(300, 280));
  EXPECT_STREQ(AtNextSleep().c_str(), "210");
  bAutoMode = false;
  clock.Advance(milliseconds(20));
  clock.AwaitSleepers(1);
  EXPECT_EQ(olddat, 279U);
}

TEST_F(LightSensorTest, ReadsBothBytesOfTheReading) {
  olddat = 0x1234 - 30;
  SetLight(0x1234);
  bAutoMode = true;
  Begin();
  EXPECT_EQ(Ramp(2), Levels(0x1234 - 30, 0x1234 - 28));
}

TEST_F(LightSensorTest, WritesTheTextAndZerosToThirtyTwoBytes) {
  olddat = 300;
  SetLight(0);
  bAutoMode = true;
  Begin();
  EXPECT_EQ(AtNextSleep(), std::string("225") + std::string(29, '\0'));
  Ramp(290);
  EXPECT_EQ(AtNextSleep(), std::string("7") + std::string(31, '\0')) << "no digit of an earlier level";
}

TEST_F(LightSensorTest, AReadingThatChangesInARampIsSeenAfterIt) {
  SetLight(30);
  bAutoMode = true;
  Begin();
  Ramp(10);
  SetLight(60);
  EXPECT_EQ(Ramp(50), Levels(10, 60)) << "two ramps";
}

TEST_F(LightSensorTest, WaitsForASensorThatNeedsMillionReadsAndNoLonger) {
  SetSensor("ready = after 999999 reads");
  SetLight(50);
  bAutoMode = true;
  Begin();
  Ramp(49);
  AtNextSleep();
  // From here on a read more than the thread makes would be needed: the last measurement is used all the same.
  SetSensor("ready = after 1000000 reads");
  SetLight(500);
  const long before = BusReads();
  EndAfterTheNextMeasurement();
  clock.Advance(milliseconds(20));
  EXPECT_TRUE(Ended()) << "nothing ramps";
  EXPECT_EQ(BusReads() - before, 1000000);
  EXPECT_EQ(olddat, 50U);
}

TEST_F(LightSensorTest, FailingTransfersLeaveTheLightAsItWas) {
  SetLight(50);
  bAutoMode = true;
  Begin();
  Ramp(49);
  AtNextSleep();
  SetSensor("transfers = fail");
  SetLight(500);
  const long before = BusReads();
  EndAfterTheNextMeasurement();
  clock.Advance(milliseconds(20));
  EXPECT_TRUE(Ended());
  EXPECT_EQ(BusReads() - before, 1000000) << "the answer before does not pass for one that failed";
  EXPECT_EQ(olddat, 50U);
}

TEST_F(LightSensorTest, EndsForGoodWithoutABus) {
  fs::remove(OnThisMachine(kBus));
  bAutoMode = true;
  Begin();
  EXPECT_TRUE(Ended());
  WriteFile(OnThisMachine(kBus), "");
  SetLight(500);
  EXPECT_EQ(Life(), "Light Sensor Thread beginning\nUnable to open /dev/i2c-0\n");
  EXPECT_EQ(ReadFile(kBacklight), "0");
}

TEST_F(LightSensorTest, EndsWhenTheBusCannotBeOpened) {
  fs::remove(OnThisMachine(kBus));
  fs::create_directory(OnThisMachine(kBus));
  EXPECT_EQ((bAutoMode = true, threadAutoScreenDim(nullptr)), -1);
  fs::remove(OnThisMachine(kBus));
  EXPECT_EQ(Life(), "Light Sensor Thread beginning\nUnable to open /dev/i2c-0\n");
}

TEST_F(LightSensorTest, EndsWhenTheChipIsElsewhere) {
  SetSensor("address = 0x35");
  bAutoMode = true;
  EXPECT_EQ(threadAutoScreenDim(nullptr), -1);
  EXPECT_EQ(Life(), "Light Sensor Thread beginning\nUnable to init jtag addr\n");
}

TEST_F(LightSensorTest, EndsWithoutABacklight) {
  fs::rename(OnThisMachine(kBacklight), OnThisMachine("/proc/aside"));
  bAutoMode = true;
  EXPECT_EQ(threadAutoScreenDim(nullptr), -1);
  fs::rename(OnThisMachine("/proc/aside"), OnThisMachine(kBacklight));
  EXPECT_EQ(Life(), "Light Sensor Thread beginning\nUnable to open /proc/blctrl\n");
}

TEST_F(LightSensorTest, EndsOnRequestWithZero) {
  exiting = true;
  bAutoMode = true;
  EXPECT_EQ(threadAutoScreenDim(nullptr), 0);
  EXPECT_EQ(Life(), "Light Sensor Thread beginning\nLight Sensor Thread Ending\n");
}

TEST_F(LightSensorTest, LeavesNoDescriptorOpen) {
  const auto open = [] {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
  };
  const auto before = open();
  bAutoMode = true;
  SetSensor("address = 0x35");
  threadAutoScreenDim(nullptr);
  fs::rename(OnThisMachine(kBacklight), OnThisMachine("/proc/aside"));
  SetSensor("");
  threadAutoScreenDim(nullptr);
  fs::rename(OnThisMachine("/proc/aside"), OnThisMachine(kBacklight));
  EXPECT_EQ(open(), before);
  Begin();
  clock.Advance(milliseconds(1));
  Rest();
  EXPECT_EQ(open(), before) << "closed in each cycle";
}

// In a process of its own, which has no standard input.
TEST_F(LightSensorTest, ADescriptor0IsNoDevice) {
  bAutoMode = true;
  const pid_t child = InChild([this] {
    close(0);
    if (threadAutoScreenDim(nullptr) != -1) return 1;
    if (fcntl(0, F_GETFD) != -1) return 3;  // it is closed all the same
    return Life() == "Light Sensor Thread beginning\nUnable to open /dev/i2c-0\n" ? 0 : 2;
  });
  EXPECT_EQ(AwaitChild(child), 0);
}

TEST_F(LightSensorTest, ABacklightWithDescriptor0IsNoDevice) {
  bAutoMode = true;
  const pid_t child = InChild([this] {
    AtNextSelection([] { close(0); });  // after the bus was opened
    if (threadAutoScreenDim(nullptr) != -1) return 1;
    return Life() == "Light Sensor Thread beginning\nUnable to open /proc/blctrl\n" ? 0 : 2;
  });
  EXPECT_EQ(AwaitChild(child), 0);
}

TEST_F(LightSensorTest, AsksTheDevicesInThisOrderInEachCycle) {
  olddat = 21;
  SetSensor("ready = after 2 reads");
  bAutoMode = true;
  BusCalls calls;
  Begin();
  // The last step of the first cycle's ramp.
  Ramp(20);
  AtNextSleep();
  bAutoMode = false;
  clock.Advance(milliseconds(20));
  clock.AwaitSleepers(1);
  std::string expected =
      "open /dev/i2c-0 2\nselect 52\nopen /proc/blctrl 2\n"
      "write 39 5: 4 0 0 0 0\nread 39 5: 4\nread 39 5: 4\nread 39 5: 4\n";
  for (int x = 21; x > 0; --x) expected += "level 32: " + std::to_string(x * 3 / 4) + "\n";
  expected += "close /proc/blctrl\nclose /dev/i2c-0\n";
  EXPECT_EQ(calls.Take(), expected);
}

TEST_F(LightSensorTest, ClosesTheBusWhenTheChipOrTheBacklightIsMissing) {
  bAutoMode = true;
  SetSensor("address = 0x35");
  BusCalls calls;
  threadAutoScreenDim(nullptr);
  EXPECT_EQ(calls.Take(), "open /dev/i2c-0 2\nselect 52\nclose /dev/i2c-0\n");
  SetSensor("");
  fs::rename(OnThisMachine(kBacklight), OnThisMachine("/proc/aside"));
  threadAutoScreenDim(nullptr);
  fs::rename(OnThisMachine("/proc/aside"), OnThisMachine(kBacklight));
  EXPECT_EQ(calls.Take(), "open /dev/i2c-0 2\nselect 52\nopen /proc/blctrl 2\nclose /dev/i2c-0\n");
}

TEST_F(LightSensorTest, ABacklightThatTakesNoLevelCutsNoRampShort) {
  SetLight(30);
  bAutoMode = true;
  RefuseLevels(true);
  Begin();
  std::string unchanged;
  for (int step = 0; step < 30; ++step) unchanged += "0,";
  EXPECT_EQ(Ramp(30), unchanged);
  RefuseLevels(false);
  while (olddat != 30) std::this_thread::yield();
  Rest();
}

TEST_F(LightSensorTest, SelectsTheChipOrSaysWhyNot) {
  const int bus = open(kBus, O_RDWR | O_CLOEXEC);
  ASSERT_GE(bus, 1);
  EXPECT_EQ(setslaveadr(bus, 0x34), 0);
  EXPECT_EQ(setslaveadr(bus, 0x50), -1);
  EXPECT_EQ(setslaveadr(bus, 0x80), -1) << "no 7-bit address";
  close(bus);
  EXPECT_EQ(setslaveadr(bus, 0x34), -1);
  EXPECT_EQ(errno, EBADF);
}

TEST_F(LightSensorTest, FollowsTheModeThroughAThousandChanges) {
  SetLight(15);
  Begin();
  for (int i = 0; i < 1000; ++i) {
    clock.AwaitSleepers(1);
    bAutoMode = true;
    clock.Advance(std::chrono::seconds(1));
    bAutoMode = false;
  }
  clock.AwaitSleepers(1);
  EXPECT_EQ(clock.Elapsed(), std::chrono::seconds(1000));
  EXPECT_TRUE(olddat == 0U || olddat == 15U) << olddat;
}

TEST_F(LightSensorTest, AnEndInARampComesAfterTheRamp) {
  SetLight(40);
  bAutoMode = true;
  Begin();
  Ramp(5);
  AtNextSleep();
  exiting = true;
  EXPECT_EQ(Ramp(35), Levels(5, 40));
  EXPECT_TRUE(Ended());
  EXPECT_EQ(olddat, 40U);
}

TEST_F(LightSensorTest, AnEndInThePollComesAfterTheCycle) {
  olddat = 5;
  bAutoMode = true;
  Begin();
  while (olddat != 0) std::this_thread::yield();
  SetSensor("ready = never");
  exiting = true;
  EXPECT_TRUE(Ended());
}

}  // namespace
