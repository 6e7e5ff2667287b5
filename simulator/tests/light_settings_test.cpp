// hw/light.ini and hw/light, as a person writes them, and the chip's blocks.
#include "light_settings.h"

#include <gtest/gtest.h>

#include <string>

#include "light_chip.h"

namespace {

std::string Show(std::string_view text) {
  const LightSettings settings = ParseLightSettings(text);
  return (settings.notReady == LightSettings::kNever ? "never" : std::to_string(settings.notReady)) +
         (settings.fails ? " fail " : " work ") + std::to_string(settings.address) + " " +
         std::to_string(settings.transferUs);
}

TEST(LightSettings, AreTheDefaultsForAnEmptyFile) {
  EXPECT_EQ(Show(""), "0 work 52 0");
}

TEST(LightSettings, TakesEveryLineThatAPersonMayWrite) {
  EXPECT_EQ(Show("ready = never\ntransfers=fail\naddress = 0x1D\ntransfer_us = 700"), "never fail 29 700");
  EXPECT_EQ(Show("ready=at once\r\n  transfers =  work  \r\naddress=80\r\n"), "0 work 80 0");
  EXPECT_EQ(Show("ready = after 12 reads"), "12 work 52 0");
  EXPECT_EQ(Show("ready = after 12"), "12 work 52 0");
  EXPECT_EQ(Show("ready = never\nready = after 1 reads"), "1 work 52 0") << "the last line counts";
}

TEST(LightSettings, LeavesTheDefaultForWhatMeansNothing) {
  EXPECT_EQ(Show("; ready = never\n# transfers = fail\n\n=\n===\nready\nready =\nready = soon\n[never]"),
            "0 work 52 0");
  EXPECT_EQ(Show("ready = after\nready = after x\nready = after -1 reads"), "0 work 52 0");
  EXPECT_EQ(Show("address = 0x\naddress = 4x\ntransfers = maybe\ntransfer_us = -5"), "0 work 52 0");
}

TEST(LightSettings, LimitsLargeNumbers) {
  EXPECT_EQ(Show("ready = after 99999999999999999999 reads\naddress = 999\ntransfer_us = 99999999999"),
            "4294967294 work 255 1000000");
}

TEST(LightReading, IsADecimalNumberOfSixteenBits) {
  uint16_t reading = 7;
  EXPECT_TRUE(ParseLightReading("300\n", &reading));
  EXPECT_EQ(reading, 300);
  EXPECT_TRUE(ParseLightReading("  0 ", &reading));
  EXPECT_EQ(reading, 0);
  EXPECT_TRUE(ParseLightReading("70000", &reading));
  EXPECT_EQ(reading, 65535);
}

TEST(LightReading, StaysAsItWasForAnythingElse) {
  for (const char* text : {"", "\n", "-1", "bright", "12a", "1 2", "0x10", "0X10", "1.5"}) {
    uint16_t reading = 7;
    EXPECT_FALSE(ParseLightReading(text, &reading)) << text;
    EXPECT_EQ(reading, 7);
  }
}

TEST(LightChip, AnswersStatusAndReadingLowByteFirst) {
  uint8_t block[5] = {9, 9, 9, 9, 9};
  AnswerLight(true, 0x1234, block);
  EXPECT_EQ(std::string(block, block + 5), std::string("\x04\x87\x34\x12\x00", 5));
  AnswerLight(false, 0xFFFE, block);
  EXPECT_EQ(std::string(block, block + 5), std::string("\x04\x07\xFE\xFF\x00", 5));
}

}  // namespace
