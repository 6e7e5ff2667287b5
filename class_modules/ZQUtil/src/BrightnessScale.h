// Brightness in the board's units and in percent. Each step is single precision, divided first: the board's values
// differ by one here and there from what whole numbers would give. Numbers off the scale go on at the same rate.
#ifndef ZQUTIL_BRIGHTNESS_SCALE_H
#define ZQUTIL_BRIGHTNESS_SCALE_H

#include <cstdint>

// Toward zero.
constexpr int32_t BrightnessPercentOfBoard(int32_t board) {
  const float share = static_cast<float>(board) / 255.0F;
  const float percent = share * 100.0F;
  return static_cast<int32_t>(percent);
}

// Toward zero. Beyond the numbers that there are, the last one.
constexpr int32_t BrightnessBoardOfPercent(int32_t percent) {
  const float share = static_cast<float>(percent) / 100.0F;
  const float board = share * 255.0F;
  if (board >= 2147483648.0F) return INT32_MAX;
  if (board < -2147483648.0F) return INT32_MIN;
  return static_cast<int32_t>(board);
}

#endif
