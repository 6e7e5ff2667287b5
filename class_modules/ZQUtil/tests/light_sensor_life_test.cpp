// The light-sensor thread's start and end with the screens that ask for it.
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>
#include <thread>

#include "ZQScreen.h"
#include "light_sensor.h"
#include "module_fixture.h"
#include "no_more_threads.h"
#include "zq_thread.h"

namespace fs = std::filesystem;
using std::chrono::milliseconds;

namespace {

class LightSensorLifeTest : public ModuleTest {
 protected:
  LightSensorLifeTest() {
    WriteFile(OnThisMachine("/dev/i2c-0"), "");
    WriteFile(OnThisMachine("/hw/light.ini"), "");
    WriteFile(OnThisMachine("/hw/light"), "100");
    olddat = 0;
  }

  // How often the text was traced.
  long Count(const std::string& text) const {
    const std::vector<std::string> texts = trace.Texts();
    return std::count(texts.begin(), texts.end(), text);
  }
  void AwaitTrace(const std::string& text, long count) const {
    while (Count(text) < count) std::this_thread::yield();
  }
  static void DimAtNextStart() { WriteFile("zqutil.ini", "[config]\nautolight=true\n"); }
};

TEST_F(LightSensorLifeTest, TheFirstScreenStartsTheThreadAndTheLastEndsIt) {
  auto first = std::make_unique<ZQScreen>(true, 60, 17);
  EXPECT_EQ(Traces(),
            "ZQUtil Setting Brightness to 60\nZQUtil Setting Contrast to 17\nSpawning Light Sensor Thread\n");
  auto second = std::make_unique<ZQScreen>(true, 70, 17);
  EXPECT_EQ(Count("Spawning Light Sensor Thread"), 2);
  EXPECT_EQ(ZQScreenInstanceCount, 2);
  AwaitTrace("Light Sensor Thread beginning", 1);
  first.reset();
  EXPECT_FALSE(exiting);
  EXPECT_EQ(ZQScreenInstanceCount, 1);
  second.reset();
  EXPECT_TRUE(exiting);
  EXPECT_EQ(ZQScreenInstanceCount, 0);
  EndLightSensor();
  EXPECT_EQ(Count("Light Sensor Thread beginning"), 1);
  EXPECT_EQ(Count("Light Sensor Thread Ending"), 1);
}

TEST_F(LightSensorLifeTest, AScreenThatAsksForNoThreadStartsAndEndsNone) {
  const ZQScreen asking(true, 60, 17);
  { const ZQScreen silent(false, 50, 17); }
  EXPECT_EQ(Count("Spawning Light Sensor Thread"), 1);
  EXPECT_EQ(ZQScreenInstanceCount, 1);
  EXPECT_FALSE(exiting);
}

TEST_F(LightSensorLifeTest, EndsInAnIdleSleepAtOnceAndTheThreadAfterIt) {
  Object& util = New();
  AwaitTrace("Light Sensor Thread beginning", 1);
  clock.AwaitSleepers(1);
  Drop(util);
  Unload();  // returns although no time goes by
  EXPECT_EQ(Count("Light Sensor Thread Ending"), 0);
  EXPECT_FALSE(zq_ThreadAwaitEnd(threadAutoScreenDim, 0));
  clock.Advance(std::chrono::seconds(1));
  EXPECT_TRUE(zq_ThreadAwaitEnd(threadAutoScreenDim, 60000));
  EXPECT_EQ(Count("Light Sensor Thread Ending"), 1);
}

TEST_F(LightSensorLifeTest, EndsInARampAtOnceAndTheThreadAfterTheRamp) {
  DimAtNextStart();
  Object& util = New();
  clock.AwaitSleepers(1);
  Drop(util);
  Unload();
  for (int i = 0; i < 99; ++i) {
    clock.Advance(milliseconds(20));
    clock.AwaitSleepers(1);
  }
  EXPECT_STREQ(ReadFile("/proc/blctrl").c_str(), "74");
  clock.Advance(milliseconds(20));
  EXPECT_TRUE(zq_ThreadAwaitEnd(threadAutoScreenDim, 60000));
  EXPECT_EQ(olddat, 100U);
}

TEST_F(LightSensorLifeTest, EndsInAPollAtOnce) {
  olddat = 95;
  DimAtNextStart();
  Object& util = New();
  while (olddat != 100) std::this_thread::yield();
  WriteFile(OnThisMachine("/hw/light.ini"), "ready = never\n");
  Drop(util);
  Unload();
  EXPECT_TRUE(zq_ThreadAwaitEnd(threadAutoScreenDim, 60000));
}

TEST_F(LightSensorLifeTest, AThreadThatMissedItsEndIsFollowedByTheNextScreens) {
  auto first = std::make_unique<ZQScreen>(true, 60, 17);
  clock.AwaitSleepers(1);
  first.reset();
  const ZQScreen next(true, 60, 17);  // takes the request back before the sleeper sees it
  AwaitTrace("Light Sensor Thread beginning", 2);
  clock.AwaitSleepers(2);
  clock.Advance(std::chrono::seconds(1));
  AwaitTrace("Light Sensor Thread Ending", 1);
  clock.AwaitSleepers(1);
  EXPECT_FALSE(zq_ThreadAwaitEnd(threadAutoScreenDim, 0)) << "the new one lives on";
  EXPECT_EQ(Count("Light Sensor Thread Ending"), 1);
}

TEST_F(LightSensorLifeTest, ANewThreadWaitsForTheOldOnesRampAndThenFollowsTheLight) {
  DimAtNextStart();
  auto first = std::make_unique<ZQScreen>(true, 60, 17);
  clock.AwaitSleepers(1);
  first.reset();
  WriteFile(OnThisMachine("/hw/light"), "30");
  const ZQScreen next(true, 60, 17);
  std::string levels;
  for (int i = 0; i < 100; ++i) {
    clock.AwaitSleepers(2);
    levels += ReadFile("/proc/blctrl").c_str() + std::string(",");
    clock.Advance(milliseconds(20));
  }
  std::string ramp;
  for (int x = 0; x < 100; ++x) ramp += std::to_string(x * 3 / 4) + ",";
  EXPECT_EQ(levels, ramp) << "undisturbed";
  AwaitTrace("Light Sensor Thread Ending", 1);
  // It may have been turned away once more just before the old one's end.
  while (std::string(ReadFile("/proc/blctrl").c_str()) != "75") {
    clock.AwaitSleepers(1);
    if (std::string(ReadFile("/proc/blctrl").c_str()) != "75") clock.Advance(milliseconds(20));
  }
  for (int x = 100; x > 90; --x) {
    clock.AwaitSleepers(1);
    EXPECT_STREQ(ReadFile("/proc/blctrl").c_str(), std::to_string(x * 3 / 4).c_str());
    clock.Advance(milliseconds(20));
  }
}

TEST_F(LightSensorLifeTest, ScreensThatComeAndGoInAStormLeaveOneThreadPerLife) {
  DimAtNextStart();
  WriteFile(OnThisMachine("/hw/light"), "15");
  for (int i = 0; i < 200; ++i) {
    const ZQScreen one(true, 60, 17);
    const ZQScreen two(true, 60, 17);
    bAutoMode = i % 3 != 0;
  }
  EXPECT_EQ(ZQScreenInstanceCount, 0);
  EndLightSensor();
  EXPECT_EQ(Count("Light Sensor Thread beginning"), 200);
  EXPECT_EQ(Count("Light Sensor Thread Ending"), 200);
}

TEST_F(LightSensorLifeTest, ASensorThatAppearsLaterIsFoundByTheNextObjectOnly) {
  fs::remove(OnThisMachine("/dev/i2c-0"));
  DimAtNextStart();
  Object& util = New();
  AwaitTrace("Unable to open /dev/i2c-0", 1);
  EXPECT_TRUE(zq_ThreadAwaitEnd(threadAutoScreenDim, 60000));
  WriteFile(OnThisMachine("/dev/i2c-0"), "");
  for (const char* mode : {"FALSE", "TRUE"}) {
    engine.Answer(util, "setDimMode", {S(mode)});
    Settle();
    EXPECT_EQ(engine.Answer(util, "getDimMode"), mode);
    EXPECT_EQ(StoredSetting("autolight"), mode == std::string("TRUE") ? "true" : "false");
  }
  clock.Advance(std::chrono::seconds(10));
  EXPECT_EQ(Count("Light Sensor Thread beginning"), 1);
  EXPECT_EQ(ReadFile("/proc/blctrl"), "255") << "dimming has no effect";
  EXPECT_EQ(Count("Light Sensor Thread Ending"), 0) << "it ended for want of a device";
  Drop(util);
  New();
  AwaitTrace("Light Sensor Thread beginning", 2);
  Settle();  // the brightness is on the backlight
  for (int step = 0; step < 2; ++step) {
    clock.AwaitSleepers(1);
    clock.Advance(milliseconds(20));
  }
  clock.AwaitSleepers(1);
  EXPECT_STREQ(ReadFile("/proc/blctrl").c_str(), "1") << "the third level of the ramp to 100";
}

TEST_F(LightSensorLifeTest, AScriptThatChangesTheModeAThousandTimesLeavesTheLastOne) {
  WriteFile(OnThisMachine("/hw/light"), "15");
  Object& util = New();
  for (int i = 0; i < 1000; ++i) {
    engine.Answer(util, "setDimMode", {S(i % 2 == 0 ? "true" : "false")});
    if (i % 100 == 0) clock.Advance(std::chrono::seconds(1));
  }
  EXPECT_EQ(engine.Answer(util, "getDimMode"), "FALSE");
  Settle();
  EXPECT_EQ(StoredSetting("autolight"), "false");
  clock.AwaitSleepers(1);
  EXPECT_EQ(Count("Light Sensor Thread beginning"), 1);
}

TEST_F(LightSensorLifeTest, AScreenLivesOnWhereNoThreadCanBeStarted) {
  char before[16] = {};
  pthread_getname_np(pthread_self(), before, sizeof before);
  {
    const NoMoreThreads tight;
    const ZQScreen screen(true, 60, 17);
    EXPECT_EQ(ZQScreenInstanceCount, 1);
    EXPECT_EQ(screen.getBrightness(), 60);
  }
  EXPECT_EQ(ZQScreenInstanceCount, 0);
  char after[16] = {};
  pthread_getname_np(pthread_self(), after, sizeof after);
  EXPECT_STREQ(after, before) << "this thread is not the sensor's";
  EXPECT_EQ(Count("Light Sensor Thread beginning"), 0);
}

// The kernel keeps fifteen characters.
TEST_F(LightSensorLifeTest, TheThreadsCarryTheirNames) {
  New();
  // Each takes on its name as it begins.
  Settle();
  clock.AwaitSleepers(1);
  std::string names;
  for (const auto& task : fs::directory_iterator("/proc/self/task")) {
    names += ReadFile(task.path().string() + "/comm");
  }
  EXPECT_NE(names.find("Light Sensor Th\n"), std::string::npos) << names;
  EXPECT_NE(names.find("ZQUtil Class Mo\n"), std::string::npos) << names;
}

TEST_F(LightSensorLifeTest, BrightnessSetByAScriptIsTheLastWordUntilTheLightChanges) {
  Object& util = New();
  Settle();
  clock.AwaitSleepers(1);
  engine.Answer(util, "setDimMode", {S("true")});
  clock.Advance(std::chrono::seconds(1));
  for (int i = 0; i < 100; ++i) {
    clock.AwaitSleepers(1);
    clock.Advance(milliseconds(20));
  }
  while (std::string(ReadFile("/proc/blctrl").c_str()) != "75") std::this_thread::yield();
  engine.Answer(util, "setBrightness", {N(42)});
  Settle();
  EXPECT_EQ(ReadFile("/proc/blctrl"), "42");
  EXPECT_EQ(engine.Answer(util, "getBrightness"), "42") << "dimming leaves the setting alone";
}

}  // namespace
