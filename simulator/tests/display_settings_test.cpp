// hw/display.ini, as a person writes it.
#include "display_settings.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string Timeouts(std::string_view text) {
  const DisplaySettings settings = ParseDisplaySettings(text);
  std::string all;
  for (const uint16_t seconds : settings.timeouts) all += std::to_string(seconds) + " ";
  return all;
}

std::string Replaced(std::string_view text, std::string_view key, std::string_view value, size_t room = 100) {
  std::string out(room, '?');
  out.resize(ReplaceDisplayValue(text, key, value, out.data(), out.size()));
  return out;
}

TEST(DisplaySettings, WithoutAFileThereIsNoServer) {
  const DisplaySettings settings = ParseDisplaySettings("");
  EXPECT_EQ(settings.server, DisplayServer::kNone);
  EXPECT_TRUE(settings.extension && settings.capable && settings.enable && settings.getTimeouts &&
              settings.setTimeouts && settings.forceLevel);
}

TEST(DisplaySettings, ReadsEachKey) {
  const DisplaySettings settings = ParseDisplaySettings(
      "; about\n server=simulated\r\nextension = no\ncapable\t= fails \nenable = fails\nget_timeouts = "
      "fails\n"
      "set_timeouts = fails\nforce_level = fails\ntimeouts = 1, 2 ,3");
  EXPECT_EQ(settings.server, DisplayServer::kSimulated);
  EXPECT_FALSE(settings.extension || settings.capable || settings.enable || settings.getTimeouts ||
               settings.setTimeouts || settings.forceLevel);
  EXPECT_EQ(Timeouts("timeouts = 1, 2 ,3"), "1 2 3 ");
  EXPECT_EQ(ParseDisplaySettings("server = real\n").server, DisplayServer::kReal);
}

TEST(DisplaySettings, LeavesTheDefaultWhereAValueMeansNothing) {
  EXPECT_EQ(ParseDisplaySettings("server = reality\n").server, DisplayServer::kNone);
  EXPECT_EQ(ParseDisplaySettings(";server = real\n#server = real\nserver\n").server, DisplayServer::kNone);
  EXPECT_TRUE(ParseDisplaySettings("capable = no\nextension = fails\n").capable);
  for (const char* value : {"", "1", "1,2", "1,2,", "1,2,3,4", "a,2,3", "-1,2,3", ",,", "1;2;3"}) {
    EXPECT_EQ(Timeouts("timeouts = " + std::string(value)), "0 0 0 ") << value;
  }
}

TEST(DisplaySettings, LimitsTimeoutsToWhatTheServerCounts) {
  EXPECT_EQ(Timeouts("timeouts = 65535,65536,99999999999999999999"), "65535 65535 65535 ");
}

TEST(DisplaySettings, ReplacesOneValueAndNothingElse) {
  EXPECT_EQ(Replaced("; level = x\nlevel =  on \nend = 1", "level", "standby"),
            "; level = x\nlevel =  standby \nend = 1");
  EXPECT_EQ(Replaced("level = on", "level", "off"), "level = off");
  EXPECT_EQ(Replaced("level =\na = 1\n", "level", "off"), "level =off\na = 1\n");
}

TEST(DisplaySettings, AddsAMissingKeyOnALineOfItsOwn) {
  EXPECT_EQ(Replaced("", "level", "off"), "level = off\n");
  EXPECT_EQ(Replaced("a = 1", "level", "off"), "a = 1\nlevel = off\n");
  EXPECT_EQ(Replaced("a = 1\n", "level", "off"), "a = 1\nlevel = off\n");
}

TEST(DisplaySettings, WritesNothingThatDoesNotFit) {
  EXPECT_EQ(Replaced("level = on\n", "level", "off", 12), "level = off\n");
  EXPECT_EQ(Replaced("level = on\n", "level", "off", 11), "");
  EXPECT_EQ(Replaced("a = 1\n", "level", "off", 8), "");
}

}  // namespace
