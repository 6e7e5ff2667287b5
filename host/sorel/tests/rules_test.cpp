// The rules of the host over plain values: text, words, timers, the idle collector, options.
#include <gtest/gtest.h>

#include "idle_collector.h"
#include "options.h"
#include "text.h"
#include "timers.h"
#include "words.h"

namespace sorel {
namespace {

using namespace std::string_literals;

TEST(Text, KnowsUtf8FromOtherBytes) {
  EXPECT_TRUE(
      IsUtf8("a\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"));
  for (const char* bad : {"\x80", "\xC0\xAF", "\xC1\xBF", "\xC2", "\xE0\x9F\xBF", "\xED\xA0\x80",
                          "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "a\xE2\x82",
                          "\xE2\x82"
                          "a"}) {
    EXPECT_FALSE(IsUtf8(bad)) << testing::PrintToString(bad);
  }
}
TEST(Text, GoesToUtf16AndBack) {
  const std::string text = "aé€😀"s;
  EXPECT_EQ(DecodeLenient(text), u"aé€😀");
  EXPECT_EQ(EncodeUtf8(u"aé€😀"), text);
}
TEST(Text, SurrogatesAtEitherEndAreReplaced) {
  EXPECT_EQ(EncodeUtf8(std::u16string{0xDC00, u'a', 0xD800}),
            "\xEF\xBF\xBD"
            "a\xEF\xBF\xBD");
  EXPECT_EQ(EncodeUtf8(std::u16string{0xD800, 0xD83D, 0xDE00}), "\xEF\xBF\xBD😀");
}

TEST(Words, HandlesAreNeitherIntegersNorVoid) {
  for (const Word number : {Word{1}, Word{2}, ObjectLayout::kMaxNumber}) {
    for (const Word index : {Word{0}, Word{1}, ObjectLayout::kMaxIndex}) {
      const Word handle = ObjectLayout::Make({number, index}, kObjectTag);
      EXPECT_TRUE(IsObjectHandle(handle));
      EXPECT_FALSE(IsInt(handle) || IsScopedHandle(handle));
      EXPECT_NE(handle, ZQ_VALUE_VOID);
      EXPECT_EQ(ObjectLayout::Parts(handle).number, number);
      EXPECT_EQ(ObjectLayout::Parts(handle).index, index);
    }
  }
  EXPECT_FALSE(IsObjectHandle(ZQ_VALUE_NULL));
  EXPECT_FALSE(IsInt(ZQ_VALUE_VOID));
  EXPECT_EQ(ToInt(ZQ_VALUE_FROM_INT(-5)), -5);
  EXPECT_EQ(ToInt(ZQ_VALUE_FROM_INT(kIntMax)), kIntMax);
  EXPECT_EQ(ToInt(ZQ_VALUE_FROM_INT(kIntMin)), kIntMin);
}

TEST(Timers, ComeInTheOrderOfTheirInstantsThenOfArming) {
  Timers timers;
  const uint32_t late = timers.Add(0, 10, false);
  const uint32_t first = timers.Add(0, 5, false);
  const uint32_t second = timers.Add(0, 5, false);
  EXPECT_EQ(timers.NextDue(), 5U);
  EXPECT_EQ(timers.TakeDue(4), std::nullopt);
  EXPECT_EQ(timers.TakeDue(20), first);
  EXPECT_EQ(timers.TakeDue(20), second);
  EXPECT_EQ(timers.TakeDue(20), late);
  EXPECT_EQ(timers.TakeDue(20), std::nullopt);
  EXPECT_EQ(timers.NextDue(), kNever);
}
TEST(Timers, IntervalsKeepTheirBeatAndSkipWhatWasMissed) {
  Timers timers;
  const uint32_t id = timers.Add(0, 10, true);
  EXPECT_EQ(timers.TakeDue(11), id);
  EXPECT_EQ(timers.NextDue(), 20U);
  EXPECT_EQ(timers.TakeDue(75), id);
  EXPECT_EQ(timers.TakeDue(75), std::nullopt);
  EXPECT_EQ(timers.NextDue(), 76U);
  EXPECT_TRUE(timers.Remove(id));
  EXPECT_FALSE(timers.Remove(id));
  EXPECT_EQ(timers.NextDue(), kNever);
}

constexpr Instant kMs = 1'000'000;

TEST(IdleCollector, LooksAtOnceThenLessAndLessThenRests) {
  IdleCollector collector;
  Instant now = 5000 * kMs;
  collector.OnActivity();
  std::vector<uint64_t> pauses;
  while (collector.NextDue(now, 1) != kNever) {
    const Instant due = collector.NextDue(now, 1);
    pauses.push_back((due - now) / kMs);
    now = due;
    collector.OnCollected(now, 0);
  }
  EXPECT_EQ(pauses, (std::vector<uint64_t>{0, 100, 1000, 10000}));
}
TEST(IdleCollector, RestsWhileThereAreNoObjects) {
  EXPECT_EQ(IdleCollector().NextDue(kMs, 0), kNever);
}
TEST(IdleCollector, ABusyScriptThatDropsNothingIsDisturbedLessAndLess) {
  IdleCollector collector;
  Instant now = 5000 * kMs;
  std::vector<uint64_t> pauses;
  for (int i = 0; i < 10; ++i) {
    collector.OnActivity();
    const Instant due = collector.NextDue(now, 1);
    pauses.push_back((due - now) / kMs);
    now = due;
    collector.OnCollected(now, 0);
  }
  EXPECT_EQ(pauses, (std::vector<uint64_t>{0, 50, 100, 200, 400, 800, 1600, 3200, 6400, 10000}));
}

TEST(Options, PathsMeanTheSameFromAnotherFolder) {
  Options options;
  std::string error;
  ASSERT_TRUE(
      ParseOptions({"--device", "dev", "--trace", "--module", "m/A.so", "--module", "/b/B.so", "s/../x.js"},
                   &options, &error));
  EXPECT_EQ(options.device, "dev");
  EXPECT_EQ(ArgumentsFor(options, "/home/u"),
            (std::vector<std::string>{"--trace", "--module", "/home/u/m/A.so", "--module", "/b/B.so",
                                      "/home/u/x.js"}));
  Options dash;
  ASSERT_TRUE(ParseOptions({"-"}, &dash, &error));
  EXPECT_EQ(ArgumentsFor(dash, "/home/u"), std::vector<std::string>{"-"});
}
TEST(Options, AnEqualsSignIsAsGoodAsABlank) {
  Options options;
  std::string error;
  ASSERT_TRUE(ParseOptions({"--device=a=b", "--module=M.so", "x=y.js"}, &options, &error)) << error;
  EXPECT_EQ(options.device, "a=b");
  EXPECT_EQ(options.modules, std::vector<std::string>{"M.so"});
  EXPECT_EQ(options.script, "x=y.js");
  EXPECT_FALSE(ParseOptions({"--device="}, &options, &error));
  EXPECT_FALSE(ParseOptions({"--trace=on"}, &options, &error));
  Options script;
  ASSERT_TRUE(ParseOptions({"--", "--device=a"}, &script, &error));
  EXPECT_EQ(script.script, "--device=a");
}
TEST(Options, WhatFollowsTwoDashesIsTheScript) {
  Options options;
  std::string error;
  ASSERT_TRUE(ParseOptions({"--", "--odd.js"}, &options, &error));
  EXPECT_EQ(options.script, "--odd.js");
}

}  // namespace
}  // namespace sorel
