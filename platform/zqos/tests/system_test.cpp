#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <string>

#include "manual_clock.h"
#include "zq_system.h"

namespace {

uint32_t SecondsAt(const char* utc) {
  tm date{};
  EXPECT_NE(strptime(utc, "%Y-%m-%d %H:%M:%S", &date), nullptr) << utc;
  ManualClock clock({timegm(&date), 999'999'999});
  return zq_SecondsIntoMonth();
}

TEST(SecondsIntoMonth, AreNoneAtItsBeginning) {
  EXPECT_EQ(SecondsAt("2026-01-01 00:00:00"), 0U);
  EXPECT_EQ(SecondsAt("2026-03-01 00:00:00"), 0U);
}

TEST(SecondsIntoMonth, AreAllButOneInItsLastSecond) {
  EXPECT_EQ(SecondsAt("2026-01-31 23:59:59"), 31U * 86400 - 1);
  EXPECT_EQ(SecondsAt("2026-02-28 23:59:59"), 28U * 86400 - 1);
  EXPECT_EQ(SecondsAt("2028-02-29 23:59:59"), 29U * 86400 - 1);
  EXPECT_EQ(SecondsAt("2026-04-30 23:59:59"), 30U * 86400 - 1);
}

TEST(SecondsIntoMonth, BeginAgainWithTheNextMonth) {
  tm date{};
  strptime("2026-12-31 23:59:59", "%Y-%m-%d %H:%M:%S", &date);
  ManualClock clock({timegm(&date), 0});
  EXPECT_EQ(zq_SecondsIntoMonth(), 31U * 86400 - 1);
  clock.Advance(std::chrono::seconds(1));
  EXPECT_EQ(zq_SecondsIntoMonth(), 0U);
}

TEST(SecondsIntoMonth, DoNotDependOnTheTimeZone) {
  const char* before = getenv("TZ");
  const std::string kept = before != nullptr ? before : "";
  setenv("TZ", "XYZ-11", 1);
  tzset();
  EXPECT_EQ(SecondsAt("2026-01-31 23:00:00"), 31U * 86400 - 3600);
  before != nullptr ? setenv("TZ", kept.c_str(), 1) : unsetenv("TZ");
  tzset();
}

TEST(SecondsIntoMonth, WorkBeforeTheEpoch) {
  EXPECT_EQ(SecondsAt("1969-12-31 23:59:58"), 31U * 86400 - 2);
}

TEST(Version, FitsOrIsCut) {
  std::array<char, 32> whole{};
  const size_t length = zqOS_GetVersion(whole.data(), whole.size());
  EXPECT_GT(length, 0U);
  EXPECT_EQ(length, std::string(whole.data()).size());

  std::array<char, 4> little{'x', 'x', 'x', 'x'};
  EXPECT_EQ(zqOS_GetVersion(little.data(), 3), length);
  EXPECT_EQ(std::string(little.data()), std::string(whole.data()).substr(0, 2));
  EXPECT_EQ(little[3], 'x');
}

TEST(Version, TellsItsLengthWithoutABuffer) {
  char untouched = 'x';
  EXPECT_GT(zqOS_GetVersion(nullptr, 0), 0U);
  EXPECT_EQ(zqOS_GetVersion(nullptr, 10), zqOS_GetVersion(&untouched, 0));
  EXPECT_EQ(untouched, 'x');
}

}  // namespace
