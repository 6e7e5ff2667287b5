// The dimming rule over numbers alone.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "DimmingRule.h"

namespace {

// Gives the rule readings and writes down what it asks for: "75" is a level, "75~" one with a pause after it.
class DimmingRuleTest : public testing::Test {
 protected:
  std::string Read(uint32_t reading) {
    const DimmingPlan plan = PlanDimming(reading, history);
    std::string levels;
    for (uint32_t index = 0; index < plan.writes; ++index) {
      levels += std::to_string(plan.Level(index)) + (plan.paced ? "~ " : " ");
    }
    history = plan.after;
    return levels;
  }
  std::string Read(uint32_t reading, int times) {
    std::string levels;
    for (int i = 0; i < times; ++i) levels += Read(reading) + "|";
    return levels;
  }

  DimmingHistory history;
};

TEST_F(DimmingRuleTest, TheFirstReadingOf100RampsFrom0To74AndApplies100) {
  std::string ramp;
  for (int x = 0; x < 100; ++x) ramp += std::to_string(x * 3 / 4) + "~ ";
  EXPECT_EQ(ramp.substr(ramp.size() - 9), " 73~ 74~ ");
  EXPECT_EQ(Read(100), ramp);
  EXPECT_EQ(history.applied, 100U);
  EXPECT_EQ(history.steady, 0U);
}

TEST_F(DimmingRuleTest, AChangeOf20IsSteadyAndOf21Ramps) {
  history = {100, 0};
  EXPECT_EQ(Read(120), "");
  EXPECT_EQ(Read(80), "");
  EXPECT_EQ(history.applied, 100U);
  EXPECT_EQ(history.steady, 2U);
  EXPECT_EQ(Read(121).substr(0, 12), "75~ 75~ 76~ ");
  EXPECT_EQ(history.applied, 121U);
  EXPECT_EQ(history.steady, 0U);
  history = {100, 5};
  EXPECT_EQ(Read(79), "75~ 74~ 73~ 72~ 72~ 71~ 70~ 69~ 69~ 68~ 67~ 66~ 66~ 65~ 64~ 63~ 63~ 62~ 61~ 60~ 60~ ");
  EXPECT_EQ(history.applied, 79U);
  EXPECT_EQ(history.steady, 0U);
}

TEST_F(DimmingRuleTest, TenSteadyReadingsThenOneWriteThenNothing) {
  Read(100);
  EXPECT_EQ(Read(104, 14), "||||||||||78 ||||");
  EXPECT_EQ(history.applied, 104U);
  EXPECT_EQ(history.steady, 11U);
}

TEST_F(DimmingRuleTest, WritesTheReadingOfThatInstantNotTheFirstSteadyOne) {
  Read(100);
  std::string levels;
  for (uint32_t reading : {101, 119, 82, 100, 99, 98, 97, 96, 95, 94, 93, 92}) levels += Read(reading) + "|";
  EXPECT_EQ(levels, "||||||||||69 ||");
  EXPECT_EQ(history.applied, 93U);
}

TEST_F(DimmingRuleTest, ADriftIsLeftAloneUntilItIsLargerThan20) {
  Read(100);
  Read(100, 11);
  for (uint32_t reading = 101; reading <= 120; ++reading) EXPECT_EQ(Read(reading), "") << reading;
  EXPECT_EQ(Read(121, 1).substr(0, 4), "75~ ");
}

TEST_F(DimmingRuleTest, ARampBeginsTheCountAnew) {
  Read(100);
  Read(100, 9);
  Read(200);
  EXPECT_EQ(Read(200, 12), "||||||||||150 ||");
}

TEST_F(DimmingRuleTest, ALightThatJumpsAtEveryReadingOnlyRamps) {
  for (int i = 0; i < 50; ++i) {
    Read(21);
    EXPECT_EQ(history.applied, 21U);
    EXPECT_EQ(Read(0).substr(0, 4), "15~ ");
    EXPECT_EQ(history.steady, 0U);
  }
}

TEST_F(DimmingRuleTest, TheWholeRangeOfReadingsGoesUpAndDown) {
  const DimmingPlan up = PlanDimming(65535, history);
  EXPECT_EQ(up.writes, 65535U);
  EXPECT_EQ(up.Level(0), 0U);
  EXPECT_EQ(up.Level(up.writes - 1), 49150U);
  const DimmingPlan down = PlanDimming(0, up.after);
  EXPECT_EQ(down.writes, 65535U);
  EXPECT_EQ(down.Level(0), 49151U);
  EXPECT_EQ(down.Level(down.writes - 1), 0U) << "the last of the way down is the level of 1";
  EXPECT_EQ(down.after.applied, 0U);
}

TEST(DimmingLevel, IsThreeQuartersOfTheReadingTruncated) {
  std::string levels;
  for (uint32_t reading : {0, 1, 2, 3, 4, 5, 99, 100, 255, 1023, 65535}) {
    levels += std::to_string(DimmingLevel(reading)) + " ";
  }
  EXPECT_EQ(levels, "0 0 1 2 3 3 74 75 191 767 49151 ");
}

// The rule said once more, as plainly as it can be, one reading after the other.
std::string Model(const std::vector<int>& readings) {
  std::string levels;
  int applied = 0;
  int counter = 0;
  const auto level = [](int x) { return std::to_string(3 * x / 4); };
  for (int reading : readings) {
    if (reading > applied + 20) {
      for (; applied < reading; ++applied) levels += level(applied) + "~ ";
      counter = 0;
    } else if (reading < applied - 20) {
      for (; applied > reading; --applied) levels += level(applied) + "~ ";
      counter = 0;
    } else {
      ++counter;
      if (counter == 11) {
        applied = reading;
        levels += level(applied) + " ";
      }
    }
    levels += "|";
  }
  return levels;
}

// A day of light, always the same one.
class Day {
 public:
  // `count` readings that go from one light to the other, each off by at most `noise`.
  void Pass(int count, int from, int to, int noise) {
    for (int i = 0; i < count; ++i) {
      const int off = noise == 0 ? 0 : static_cast<int>(random_() % (2 * noise + 1)) - noise;
      const int reading = from + (to - from) * i / count + off;
      readings.push_back(reading < 0 ? 0 : reading);
    }
  }
  // Exactly that far off, to either side in turn.
  void Flicker(int count, int around, int off) {
    for (int i = 0; i < count; ++i) readings.push_back(around + (i % 2 == 0 ? off : -off));
  }

  std::vector<int> readings;

 private:
  std::mt19937 random_{20261121};  // its numbers are the same everywhere
};

TEST_F(DimmingRuleTest, FollowsADayOfLightAsAPlainModelDoes) {
  Day day;
  std::vector<size_t> ends;
  const auto end = [&] { ends.push_back(day.readings.size()); };
  day.Pass(1000, 3, 3, 2);  // night
  end();
  day.Pass(2000, 3, 600, 4);  // dawn
  end();
  day.Pass(1, 700, 700, 0);  // a flash
  day.Pass(29, 600, 600, 0);
  end();
  day.Flicker(1000, 600, 20);  // leaves moving before the window
  end();
  day.Flicker(1000, 600, 21);
  end();
  for (int cloud = 0; cloud < 20; ++cloud) {
    day.Pass(60, 800, 800, 20);
    day.Pass(40, 350, 350, 21);
  }
  end();
  day.Pass(2000, 800, 10, 6);  // dusk
  end();
  day.Pass(500, 200, 200, 3);  // lamp on
  end();
  day.Pass(500, 4, 4, 3);  // lamp off
  end();

  std::string levels;
  std::vector<uint32_t> applied;
  std::vector<size_t> written;
  size_t phase = 0;
  for (size_t i = 0; i < day.readings.size(); ++i) {
    levels += Read(static_cast<uint32_t>(day.readings[i])) + "|";
    if (i + 1 != ends[phase]) continue;
    applied.push_back(history.applied);
    written.push_back(levels.size());
    ++phase;
  }
  ASSERT_EQ(day.readings.size(), 10030U);
  EXPECT_EQ(levels, Model(day.readings));

  // What a person in the room would check, phase by phase.
  const auto writesIn = [&](size_t from, size_t to) {
    return std::count(levels.begin() + static_cast<std::ptrdiff_t>(from),
                      levels.begin() + static_cast<std::ptrdiff_t>(to), ' ');
  };
  EXPECT_EQ(writesIn(0, written[0]), 1) << "a steady night is applied once";
  EXPECT_LE(applied[0], 5U);
  EXPECT_NEAR(applied[1], 600, 25) << "dawn is followed";
  EXPECT_EQ(applied[2], 600U);
  EXPECT_EQ(writesIn(written[2], written[3]), 0) << "a flicker of 20 is left alone";
  EXPECT_EQ(writesIn(written[3], written[4]), 21 + 999 * 42) << "each flicker of 21 is followed";
  EXPECT_NEAR(applied[5], 350, 21 + 20) << "under the last cloud";
  EXPECT_NEAR(applied[6], 10, 30) << "dusk";
  EXPECT_NEAR(applied[7], 200, 3 + 20);
  EXPECT_EQ(writesIn(written[6], written[7]), day.readings[ends[6]] - static_cast<int>(applied[6]) + 1)
      << "one ramp for the lamp, and one level at its end";
  EXPECT_LE(applied[8], 7U);
}

}  // namespace
