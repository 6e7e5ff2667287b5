// What the speaker's volume element is set to, over plain numbers.
#include "mixer_level.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

constexpr int32_t kLevels[] = {-1000, -1, 0, 1, 50, 94, 95, 96, 100, 1000};

// The values for kLevels.
std::string Values(MixerKind kind, int64_t maximum) {
  std::string values;
  for (const int32_t level : kLevels) values += std::to_string(SpeakerValue(kind, maximum, level)) + " ";
  return values;
}

TEST(SpeakerValue, IsTheLevelsShareOfTheMaximumTruncatedTowardZero) {
  for (const MixerKind kind : {MixerKind::kInteger, MixerKind::kInteger64}) {
    EXPECT_EQ(Values(kind, 0), "0 0 0 0 0 0 0 0 0 0 ");
    EXPECT_EQ(Values(kind, 1), "-10 0 0 0 0 0 0 0 0 0 ");
    EXPECT_EQ(Values(kind, 31), "-310 0 0 0 15 29 29 29 29 29 ");
    EXPECT_EQ(Values(kind, 63), "-630 0 0 0 31 59 59 59 59 59 ");
    EXPECT_EQ(Values(kind, 100), "-1000 -1 0 1 50 94 95 95 95 95 ");
    EXPECT_EQ(Values(kind, 65535), "-655350 -655 0 655 32767 61602 62258 62258 62258 62258 ");
  }
}

TEST(SpeakerValue, WrapsWhereTheProductLeaves32Bits) {
  for (const MixerKind kind : {MixerKind::kInteger, MixerKind::kInteger64}) {
    EXPECT_EQ(Values(kind, std::numeric_limits<int32_t>::max()),
              "10 -21474836 0 21474836 0 0 21474835 21474835 21474835 21474835 ");
    EXPECT_EQ(SpeakerValue(kind, 22605091, 95), 21474836) << "the last that fits";
    EXPECT_EQ(SpeakerValue(kind, 22605092, 95), -21474835) << "the first that does not";
  }
}

TEST(SpeakerValue, OfA64BitMaximumOnlyTheLowHalfCounts) {
  constexpr int64_t kHigh = int64_t{1} << 32;
  for (const int64_t low : {0, 1, 31, 63, 100, 65535, std::numeric_limits<int32_t>::max()}) {
    EXPECT_EQ(Values(MixerKind::kInteger64, kHigh + low), Values(MixerKind::kInteger64, low));
    EXPECT_EQ(Values(MixerKind::kInteger64, 7 * kHigh + low), Values(MixerKind::kInteger64, low));
  }
  // A low half with its highest bit set is a number below 0.
  EXPECT_EQ(Values(MixerKind::kInteger64, kHigh / 2),
            "0 -21474836 0 -21474836 0 0 -21474836 -21474836 -21474836 -21474836 ");
  EXPECT_EQ(Values(MixerKind::kInteger64, kHigh - 200), "2000 2 0 -2 -100 -188 -190 -190 -190 -190 ");
  EXPECT_EQ(Values(MixerKind::kInteger64, std::numeric_limits<int64_t>::max()), "10 0 0 0 0 0 0 0 0 0 ");
}

TEST(SpeakerValue, OfAnElementWithoutNumbersIs0) {
  for (const int64_t maximum : {int64_t{0}, int64_t{1}, int64_t{100}, std::numeric_limits<int64_t>::max()}) {
    EXPECT_EQ(Values(MixerKind::kOther, maximum), "0 0 0 0 0 0 0 0 0 0 ");
  }
}

TEST(SpeakerValue, TakesTheExtremesOfALevel) {
  EXPECT_EQ(SpeakerValue(MixerKind::kInteger, 100, std::numeric_limits<int32_t>::max()), 95);
  EXPECT_EQ(SpeakerValue(MixerKind::kInteger, 1, std::numeric_limits<int32_t>::min()), -21474836);
  EXPECT_EQ(SpeakerValue(MixerKind::kInteger, 2, std::numeric_limits<int32_t>::min()), 0);
}

}  // namespace
