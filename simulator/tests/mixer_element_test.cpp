#include "mixer_element.h"

#include <gtest/gtest.h>

namespace {

// "TYPE MIN..MAX LEFT,RIGHT", or "none".
std::string Parsed(const ElementTexts& texts) {
  const auto element = ParseElement(texts);
  if (!element) return "none";
  return std::to_string(static_cast<int>(element->type)) + " " + std::to_string(element->min) + ".." +
         std::to_string(element->max) + " " + ChannelText(element->values);
}

TEST(MixerElement, IsWhatItsTextsSay) {
  EXPECT_EQ(Parsed({"integer", "0", "31", "23,24"}), "0 0..31 23,24");
  EXPECT_EQ(Parsed({"integer", "-10", "10", " -3 , 4 "}), "0 -10..10 -3,4");
  EXPECT_EQ(Parsed({"integer64", "0", "9223372036854775807", "4294967296"}),
            "1 0..9223372036854775807 4294967296,4294967296");
  EXPECT_EQ(Parsed({"boolean", "", "", "1,0"}), "2 0..1 1,0");
  EXPECT_EQ(Parsed({"enumerated", "", "3", "2"}), "3 0..3 2,2");
  EXPECT_EQ(Parsed({"bytes", "", "", "255,7"}), "4 0..255 255,7");
}

TEST(MixerElement, IsNoneWithoutATypeThatThereIs) {
  EXPECT_EQ(Parsed({"", "0", "31", "23"}), "none");
  EXPECT_EQ(Parsed({"Integer", "0", "31", "23"}), "none");
  EXPECT_EQ(Parsed({"integer32", "0", "31", "23"}), "none");
}

TEST(MixerElement, WhatIsNoNumberIsTheDefault) {
  EXPECT_EQ(Parsed({"integer", "", "", ""}), "0 0..100 0,0");
  EXPECT_EQ(Parsed({"integer", "low", "9x", "loud,1e3"}), "0 0..100 0,0");
  EXPECT_EQ(Parsed({"integer", "5", "99999999999999999999", ",6"}), "0 5..100 5,6");
  EXPECT_EQ(Parsed({"integer", "0", "9", "1,2,3"}), "0 0..9 1,0");
}

TEST(MixerElement, LimitsAndValuesFitTogether) {
  EXPECT_EQ(Parsed({"integer", "50", "20", "1,99"}), "0 50..50 50,50");
  EXPECT_EQ(Parsed({"integer", "0", "31", "-1,32"}), "0 0..31 0,31");
  EXPECT_EQ(Parsed({"boolean", "-5", "5", "-5,5"}), "2 0..1 0,1");
  EXPECT_EQ(Parsed({"enumerated", "2", "4294967296", "1000"}), "3 0..999 999,999");
  EXPECT_EQ(Parsed({"enumerated", "0", "-4", "1"}), "3 0..0 0,0");
  EXPECT_EQ(Parsed({"bytes", "-9", "1000", "-1,256"}), "4 0..255 0,255");
}

TEST(MixerElement, TakesWhatIsInItsRangeOnBothChannels) {
  const MixerElement element{ElementType::kInteger, -2, 5, {}};
  EXPECT_TRUE(Takes(element, {-2, 5}));
  EXPECT_FALSE(Takes(element, {-3, 5}));
  EXPECT_FALSE(Takes(element, {-2, 6}));
}

}  // namespace
