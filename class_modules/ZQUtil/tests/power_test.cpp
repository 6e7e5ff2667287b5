// Power: what scripts hear for what the battery driver's files say.
#include <gtest/gtest.h>

#include <filesystem>

#include "module_fixture.h"

namespace {

constexpr char kCharge[] = "/sys/class/hwmon/hwmon5/device/mrst_batmon/charge";
constexpr char kVoltage[] = "/sys/class/hwmon/hwmon5/device/mrst_batmon/vbat";

class PowerTest : public ModuleTest {
 protected:
  PowerTest() : util(New()) {
    Settle();
    ForgetTraces();
  }
  ~PowerTest() override {
    WriteFile(OnThisMachine(kCharge), "8\n");
    WriteFile(OnThisMachine(kVoltage), "367\n");
  }

  std::string ChargeFor(const std::string& content) {
    WriteFile(kCharge, content);
    ForgetTraces();
    return engine.Answer(util, "chargeStatus");
  }

  std::string PercentFor(const std::string& content) {
    WriteFile(kVoltage, content);
    ForgetTraces();
    return engine.Answer(util, "batteryPct");
  }

  Object& util;
};

TEST_F(PowerTest, TracesTheEndsOfTheScale) {
  PercentFor("400");
  EXPECT_NE(Traces().find("Calculating Battery Percent for 400\nPercent is 100\n"), std::string::npos);
  PercentFor("333");
  EXPECT_NE(Traces().find("Calculating Battery Percent for 333\nPercent is 0\n"), std::string::npos);
}

TEST_F(PowerTest, IsNoTablet) {
  EXPECT_EQ(engine.Answer(util, "isTablet"), "no");
}

TEST_F(PowerTest, NamesEveryChargerState) {
  struct Row {
    std::vector<int> values;
    const char* trace;
    const char* name;
  };
  const Row rows[] = {
      {{4, 5, 6, 9, 12, 18}, "Precharge", "precharge"},
      {{7, 10, 13, 19, 20}, "Charge Stop", "chargestop"},
      {{8, 11}, "Quick Charge", "quickcharge"},
      {{0, 1, 2, 3}, "Battery", "battery"},
      {{14, 15, 16, 17, 21, 22, 1000, -1, -2147483647}, "Charge Complete or Default", "chargecomplete"},
  };
  for (const Row& row : rows) {
    for (const int value : row.values) {
      const std::string number = std::to_string(value);
      EXPECT_EQ(ChargeFor(number + "\n"), row.name) << value;
      EXPECT_EQ(Traces(), "GUI call to GetIntFileFromContents\nValue from file " + std::string(kCharge) +
                              " is " + number + "\nCharge Status is " + number + "\n" + row.trace + "\n");
    }
  }
}

TEST_F(PowerTest, MakesItsStringsWithTheTerminatingNulCounted) {
  for (const auto& [content, length] :
       std::vector<std::pair<const char*, uint32_t>>{{"4", 10}, {"7", 11}, {"8", 12}, {"0", 8}, {"14", 15}}) {
    WriteFile(kCharge, content);
    zq_Value result = ZQ_VALUE_VOID;
    ASSERT_EQ(engine.Call(util, "chargeStatus", {}, &result), 1);
    EXPECT_EQ(engine.LengthGiven(result), length) << content;
  }
}

TEST_F(PowerTest, TellsTheBatteryInPercent) {
  for (const auto& [voltage, percent] :
       std::vector<std::pair<const char*, const char*>>{{"400", "100"},
                                                        {"1000", "100"},
                                                        {"399", "98"},
                                                        {"367", "50"},
                                                        {"334", "1"},
                                                        {"333", "0"},
                                                        {"0", "0"},
                                                        {"-5", "0"},
                                                        {"99999999999", "100"}}) {
    EXPECT_EQ(PercentFor(voltage), "<int " + std::string(percent) + ">") << voltage;
  }
}

TEST_F(PowerTest, TracesItsCalculation) {
  PercentFor("367\n");
  EXPECT_EQ(Traces(), "GUI call to GetIntFileFromContents\nValue from file " + std::string(kVoltage) +
                          " is 367\nCalculating Battery Percent for 367\nPercent is 50\n");
}

TEST_F(PowerTest, IsLinearBetweenEmptyAndFull) {
  for (int voltage = 334; voltage <= 399; ++voltage) {
    const std::string answer = PercentFor(std::to_string(voltage));
    const int percent = std::stoi(answer.substr(5));
    EXPECT_EQ(percent, 100 * (voltage - 333) / 67) << voltage;
  }
}

TEST_F(PowerTest, WithoutABatteryItRunsOnAnEmptyOne) {
  std::filesystem::remove(OnThisMachine(kCharge));
  std::filesystem::remove(OnThisMachine(kVoltage));
  EXPECT_EQ(engine.Answer(util, "chargeStatus"), "battery");
  EXPECT_EQ(engine.Answer(util, "batteryPct"), "<int 0>");
  EXPECT_EQ(Traces(),
            "GUI call to GetIntFileFromContents\nCould not open file " + std::string(kCharge) +
                "\nCharge Status is 0\nBattery\nGUI call to GetIntFileFromContents\nCould not open file " +
                kVoltage + "\nCalculating Battery Percent for 0\nPercent is 0\n");
}

TEST_F(PowerTest, ReadsTheNumberAtTheStartOfTheFirstLine) {
  const auto value = [](const std::string& content) {
    WriteFile("/tmp/number", content);
    return ZQUtil::GetIntValueFromFileContents("/tmp/number");
  };
  EXPECT_EQ(value("  42abc"), 42);
  EXPECT_EQ(value("\t-7\n9\n"), -7);
  EXPECT_EQ(value("+3"), 3);
  EXPECT_EQ(value("abc"), 0);
  EXPECT_EQ(value(""), 0);
  EXPECT_EQ(value("\n5\n"), 0) << "the first line is empty";
  EXPECT_EQ(value(std::string(253, ' ') + "77"), 7) << "254 characters are read";
}

TEST_F(PowerTest, AsksForAName) {
  EXPECT_EQ(ZQUtil::GetIntValueFromFileContents(nullptr), 0);
  EXPECT_EQ(Traces(),
            "GUI call to GetIntFileFromContents\nNo Filename Supplied to GetIntValueFromFileContents\n");
}

}  // namespace
