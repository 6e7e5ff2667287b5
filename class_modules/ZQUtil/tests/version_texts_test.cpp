// How the version files' texts become what users see.
#include <gtest/gtest.h>

#include "VersionTexts.h"

namespace {

TEST(VersionTexts, ALineEndsAtItsFirstBreakOrTab) {
  const std::pair<std::string_view, std::string_view> rows[] = {{"2.1.7", "2.1.7"},
                                                                {"2.1.7\n", "2.1.7"},
                                                                {"2.1.7\r\nmore", "2.1.7"},
                                                                {"2.1.7\tand more", "2.1.7"},
                                                                {"2 1 7 ", "2 1 7 "},
                                                                {"\n2.1.7", ""},
                                                                {"\t", ""},
                                                                {"", ""}};
  for (const auto& [text, line] : rows) EXPECT_EQ(VersionLine(text), line);
}

TEST(VersionTexts, FirmwareNamesTheBoardAndTheDeviceThatHaveANumber) {
  EXPECT_EQ(FirmwareVersionText("2.1.7\n", 3, 0), "2.1.7 (boardrev: 3)");
  EXPECT_EQ(FirmwareVersionText("2.1.7\n", 3, 42), "2.1.7 (boardrev: 3) [ID=42]");
  EXPECT_EQ(FirmwareVersionText("2.1.7", 0, 42), "2.1.7 [ID=42]");
  EXPECT_EQ(FirmwareVersionText("2.1.7", -1, -1), "2.1.7");
  EXPECT_EQ(FirmwareVersionText("", 3, 0), " (boardrev: 3)");
  EXPECT_EQ(FirmwareVersionText("2", INT32_MAX, INT32_MAX), "2 (boardrev: 2147483647) [ID=2147483647]");
  EXPECT_EQ(FirmwareVersionText(std::nullopt, 3, 42), "");
}

TEST(VersionTexts, SoftwareStandsBeforeThePlatform) {
  EXPECT_EQ(SoftwareVersionText("R12\n", "5.4"), "R12 (5.4)");
  EXPECT_EQ(SoftwareVersionText("", "5.4"), "5.4");
  EXPECT_EQ(SoftwareVersionText("\nR12", "5.4"), "5.4");
  EXPECT_EQ(SoftwareVersionText(std::nullopt, "5.4"), "5.4");
  EXPECT_EQ(SoftwareVersionText("R12", ""), "R12 ()");
}

TEST(VersionTexts, ThePlatformsPrefixIsLeftOutWhenItIsWhole) {
  EXPECT_EQ(PlatformVersionLine("Brimvale Version: 1.0.000 5.4"), "5.4");
  EXPECT_EQ(SoftwareVersionText("R12", PlatformVersionLine("Brimvale Version: 1.0.000 5.4")), "R12 (5.4)");
  EXPECT_EQ(PlatformVersionLine("Brimvale Version: 1.0.000 "), "");
  for (const char* const other :
       {"Brimvale Version: 1.0.000", "brimvale Version: 1.0.000 5.4", " Brimvale Version: 1.0.000 5.4",
        "Brimvale Version: 1.0.001 5.4", "5.4", ""}) {
    EXPECT_EQ(PlatformVersionLine(other), other);
  }
}

}  // namespace
