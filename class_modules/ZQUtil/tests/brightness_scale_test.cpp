// Brightness in the board's units and in percent, against the rule in single precision.
#include <gtest/gtest.h>

#include <cmath>

#include "BrightnessScale.h"

namespace {

// Each step stored, so that no more than single precision is kept of it.
int32_t Scaled(int32_t value, float whole, float of) {
  const volatile float share = static_cast<float>(value) / whole;
  const volatile float scaled = share * of;
  return static_cast<int32_t>(std::trunc(scaled));
}

TEST(BrightnessScale, FollowsTheSinglePrecisionRuleOnAndOffTheScale) {
  for (int32_t value = -300; value <= 600; ++value) {
    EXPECT_EQ(BrightnessPercentOfBoard(value), Scaled(value, 255.0F, 100.0F)) << value;
    EXPECT_EQ(BrightnessBoardOfPercent(value), Scaled(value, 100.0F, 255.0F)) << value;
  }
}

TEST(BrightnessScale, KeepsTheEndsAndNeverFalls) {
  EXPECT_EQ(BrightnessPercentOfBoard(0), 0);
  EXPECT_EQ(BrightnessPercentOfBoard(255), 100);
  EXPECT_EQ(BrightnessBoardOfPercent(0), 0);
  EXPECT_EQ(BrightnessBoardOfPercent(100), 255);
  for (int32_t board = 1; board <= 255; ++board) {
    EXPECT_GE(BrightnessPercentOfBoard(board), BrightnessPercentOfBoard(board - 1)) << board;
  }
  for (int32_t percent = 1; percent <= 100; ++percent) {
    EXPECT_GT(BrightnessBoardOfPercent(percent), BrightnessBoardOfPercent(percent - 1)) << percent;
  }
}

TEST(BrightnessScale, RoundsTowardZeroOnBothSides) {
  EXPECT_EQ(BrightnessPercentOfBoard(128), 50);
  EXPECT_EQ(BrightnessPercentOfBoard(127), 49);
  EXPECT_EQ(BrightnessPercentOfBoard(-127), -49);
  EXPECT_EQ(BrightnessPercentOfBoard(-1), 0);
  EXPECT_EQ(BrightnessBoardOfPercent(50), 127);
  EXPECT_EQ(BrightnessBoardOfPercent(-50), -127);
}

// Where a whole number is expected, single precision falls short of it here and there, or does not.
TEST(BrightnessScale, TakesNoMorePrecisionThanSingle) {
  for (int32_t twentieth = 0; twentieth <= 5; ++twentieth) {
    EXPECT_EQ(BrightnessPercentOfBoard(51 * twentieth), Scaled(51 * twentieth, 255.0F, 100.0F)) << twentieth;
    EXPECT_EQ(BrightnessBoardOfPercent(20 * twentieth), Scaled(20 * twentieth, 100.0F, 255.0F)) << twentieth;
  }
}

TEST(BrightnessScale, HasAnAnswerForEveryNumber) {
  EXPECT_EQ(BrightnessBoardOfPercent(INT32_MAX), INT32_MAX);
  EXPECT_EQ(BrightnessBoardOfPercent(INT32_MIN), INT32_MIN);
  EXPECT_EQ(BrightnessPercentOfBoard(INT32_MIN), Scaled(INT32_MIN, 255.0F, 100.0F));
}

}  // namespace
