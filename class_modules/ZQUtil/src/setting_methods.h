// What the numeric settings of the script class share: texts in, clamped numbers, texts out.
#ifndef ZQUTIL_SETTING_METHODS_H
#define ZQUTIL_SETTING_METHODS_H

#include <optional>

#include "script_values.h"

struct SettingRange {
  int32_t least;
  int32_t most;
  // The nearest number of the range.
  int32_t Clamp(int32_t number) const {
    if (number < least) return least;
    return number > most ? most : number;
  }
};

constexpr SettingRange kPercent{0, 100};

// The first argument as a number of the range, as its text says; text that is no number counts
// as 0, which the range may raise. Nothing
// when the argument is missing or cannot be text.
std::optional<int32_t> NumberArgument(uint32_t argc, const zq_Value* argv, SettingRange range);
// The decimal text of a number, as long as the object lives.
struct DecimalText {
  explicit DecimalText(int32_t number);
  char text[12];
};

#endif
