// What the device stored stays whole: through processes killed at any instant, and through disks that refuse.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <random>

#include "ZQUtilEntryPoints.h"
#include "fault.h"
#include "module_fixture.h"
#include "storm_rounds.h"

namespace {

// Between the numbers of two rounds: more than a round has the time to write.
constexpr int kRoundsApart = 100000;

// Microseconds. So long a round writes fewer numbers than lie between two.
constexpr unsigned kLongestWindow = 10'000'000;

// A value that shows whether it is whole: its number, and as many letters as that says.
std::string Value(int number) {
  return std::to_string(number) + ":" + std::string(number % 700, 'v');
}

// The number of a whole value; -1 for a torn one; 0 for none.
int NumberOf(const std::string& value) {
  if (value == "<none>") return 0;
  const int number = std::atoi(value.c_str());
  return number > 0 && value == Value(number) ? number : -1;
}

[[noreturn]] void WriteUntilKilled(int from) {
  BareEngine engine;
  MM_InitWrapper(engine.Table(), BareEngine::TableBytes());
  BareEngine::Object& util = engine.Construct();
  for (int number = from;; ++number) {
    const zq_Value value = engine.String(Value(number));
    engine.Call(util, "setIniSetting", {engine.String("app"), engine.String("key"), value}, nullptr);
    // The key store is small: its copies hold a few thousand bytes.
    engine.Call(util, "setFirstTime", {value}, nullptr);
    engine.Call(util, "setBrightness", {ZQ_VALUE_FROM_INT(number % 100)}, nullptr);
    usleep(200);
  }
}

// How long a process needs here from its start until what it stores is on the disk.
unsigned MicrosecondsToTheFirstWrite() {
  const auto start = std::chrono::steady_clock::now();
  const pid_t child = fork();
  if (child == 0) WriteUntilKilled(1);
  while (StoredSetting("key", "app.ini") == "<none>" || StoredKey("net.firsttime") == "<none>") usleep(200);
  const auto needed = std::chrono::steady_clock::now() - start;
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  return static_cast<unsigned>(std::chrono::duration_cast<std::chrono::microseconds>(needed).count());
}

TEST(Storm, KillsAtAnyInstantLeaveEveryFileOldOrNewAndWhole) {
  std::mt19937 random(20261121);
  int setting = 0;
  int key = 0;
  // The least of several: one that the machine kept waiting would make every round wait.
  unsigned start = UINT_MAX;
  for (int i = 0; i < 5; ++i) {
    ResetDevice();
    start = std::min(start, MicrosecondsToTheFirstWrite());
  }
  // Follows the machine, whose others may come and go: a round that stored nothing makes it longer, another one shorter.
  unsigned window = 2 * start + 5000;
  for (int round = 1; round <= kStormRounds; ++round) {
    const pid_t child = fork();
    if (child == 0) WriteUntilKilled(round * kRoundsApart);
    usleep(random() % window);
    kill(child, SIGKILL);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << "it ended by itself: " << status;

    const int settingNow = NumberOf(StoredSetting("key", "app.ini"));
    ASSERT_GE(settingNow, setting) << "round " << round << ": " << ReadFile("app.ini");
    setting = settingNow;
    const int keyNow = NumberOf(StoredKey("net.firsttime"));
    ASSERT_GE(keyNow, key) << "round " << round << ": " << StoredKey("net.firsttime");
    key = keyNow;
    const bool late = setting >= round * kRoundsApart && key >= round * kRoundsApart;
    window = late ? std::max(window - window / 20, start) : std::min(window + window / 10, kLongestWindow);
    const std::string brightness = StoredSetting("brightness");
    ASSERT_TRUE(brightness == "<none>" || brightness == std::to_string(std::stoi(brightness))) << brightness;
  }
  EXPECT_GE(setting, kRoundsApart) << "the storm never reached the disk";
  EXPECT_GE(key, kRoundsApart);
}

class RefusingDiskTest : public ModuleTest,
                         public testing::WithParamInterface<std::tuple<const char*, const char*>> {};

TEST_P(RefusingDiskTest, WhatWasStoredStaysAndTheNextWriteWorks) {
  Object& util = New();
  const auto set = [&](int number) {
    engine.Answer(util, "setIniSetting", {S("app"), S("key"), S(Value(number))});
    engine.Answer(util, "setFirstTime", {S(Value(number))});
    Settle();
  };
  set(1001);
  for (int nth = 1; nth <= 6; ++nth) {
    const auto& [call, error] = GetParam();
    {
      const Fault fault(OnThisMachine(""), std::string(call) + ":" + std::to_string(nth) + ":" + error);
      set(1002);
      // A settings write flushes and renames, and both open, write and close; ftruncate is nobody's.
      if (nth == 1 && std::string(call) != "ftruncate") {
        EXPECT_GE(fault.Calls(call), 1);
      }
    }
    for (const std::string& value : {StoredSetting("key", "app.ini"), StoredKey("net.firsttime")}) {
      EXPECT_TRUE(NumberOf(value) == 1001 || NumberOf(value) == 1002) << nth << ": " << value;
    }
    set(1001);
    EXPECT_EQ(StoredSetting("key", "app.ini"), Value(1001)) << nth;
    EXPECT_EQ(StoredKey("net.firsttime"), Value(1001)) << nth;
  }
}

INSTANTIATE_TEST_SUITE_P(
    EachCall, RefusingDiskTest,
    testing::Combine(testing::Values("open", "write", "fsync", "rename", "close", "ftruncate"),
                     testing::Values("ENOSPC", "EIO")),
    [](const auto& row) { return std::string(std::get<0>(row.param)) + "With" + std::get<1>(row.param); });

}  // namespace
