// What a write leaves of the file's text: everything but the value.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ini_helpers.h"
#include "temp_dir.h"

namespace {

class IniTextTest : public testing::Test {
 protected:
  // The file's bytes after one write into it.
  std::string After(const std::string& before, const char* section, const char* key, const char* value) {
    WriteFile(file_, before);
    EXPECT_TRUE(Set(section, key, value, file_));
    EXPECT_EQ(Value(section, key, file_), value);
    return ReadFile(file_);
  }

  TempDir folder_;
  std::string file_ = folder_ / "settings.ini";
};

TEST_F(IniTextTest, KeepsCommentsOrderBlankLinesAndSpacing) {
  const std::string before =
      "; the device's network\n\n\n[net] ; wired\n  ip  =  1  \nmask=2\n\tgateway =3\n; end of net\n\n"
      "# wireless\n[ radio ]\nchannel=11\n\n\n; end of file\n";
  std::string after = before;
  after.replace(after.find("=  1  ") + 3, 1, "10.0.0.1");
  EXPECT_EQ(After(before, "NET", "Ip", "10.0.0.1"), after);
}

TEST_F(IniTextTest, KeepsLinesThatAreNoSetting) {
  const std::string odd = std::string("n\0l\0\n", 5) + "\xFF\xFE garbage\n=x\nno setting here\n";
  EXPECT_EQ(After("[a]\n" + odd + "x=1\n" + odd, "a", "x", "2"), "[a]\n" + odd + "x=2\n" + odd);
}

TEST_F(IniTextTest, KeepsByteOrderMarkAndCrLfAndUsesThem) {
  EXPECT_EQ(After("\xEF\xBB\xBF[a]\r\nx=1\r\n", "a", "x", "2"), "\xEF\xBB\xBF[a]\r\nx=2\r\n");
  EXPECT_EQ(After("\xEF\xBB\xBF[a]\r\nx=1\r\n", "a", "y", "2"), "\xEF\xBB\xBF[a]\r\nx=1\r\ny=2\r\n");
  EXPECT_EQ(After("[a]\r\nx=1\r\n", "b", "y", "2"), "[a]\r\nx=1\r\n\r\n[b]\r\ny=2\r\n");
  EXPECT_EQ(After("\xEF\xBB\xBF", "a", "x", "1"), "\xEF\xBB\xBF[a]\nx=1\n");
}

TEST_F(IniTextTest, FollowsTheLineEndsOfTheNeighbourhoodInAMixedFile) {
  EXPECT_EQ(After("[a]\nx=1\n[b]\r\nx=1\r\n", "a", "y", "2"), "[a]\nx=1\ny=2\n[b]\r\nx=1\r\n");
  EXPECT_EQ(After("[a]\nx=1\n[b]\r\nx=1\r\n", "b", "y", "2"), "[a]\nx=1\n[b]\r\nx=1\r\ny=2\r\n");
}

TEST_F(IniTextTest, AMissingLastNewlineStaysMissingUntilALineFollows) {
  EXPECT_EQ(After("[a]\nx=1", "a", "x", "2"), "[a]\nx=2");
  EXPECT_EQ(After("[a]\nx=1", "a", "y", "2"), "[a]\nx=1\ny=2\n");
  EXPECT_EQ(After("[a]\r\nx=1", "a", "y", "2"), "[a]\r\nx=1\r\ny=2\r\n");
  EXPECT_EQ(After("[a]\nx=1", "b", "y", "2"), "[a]\nx=1\n\n[b]\ny=2\n");
  EXPECT_EQ(After("[a]", "a", "y", "2"), "[a]\ny=2\n");
}

TEST_F(IniTextTest, KeepsAnUnterminatedSectionAndWritesIntoIt) {
  EXPECT_EQ(After("[net]\nx=1\n[conf\nx=2\n", "net", "x", "3"), "[net]\nx=3\n[conf\nx=2\n");
  EXPECT_EQ(After("[net]\nx=1\n[conf", "conf", "x", "3"), "[net]\nx=1\n[conf\nx=3\n");
}

TEST_F(IniTextTest, ReplacesTheLastOfEqualKeysOnly) {
  EXPECT_EQ(After("[a]\nx=1\nx=2\n[b]\n[a]\ny=1\n", "a", "x", "3"), "[a]\nx=1\nx=3\n[b]\n[a]\ny=1\n");
}

TEST_F(IniTextTest, ANewKeyGoesToTheEndOfTheLastSectionOfThatName) {
  EXPECT_EQ(After("[a]\nx=1\n\n[b]\n[a]\ny=1\n\n\n[c]\n", "a", "z", "1"),
            "[a]\nx=1\n\n[b]\n[a]\ny=1\nz=1\n\n\n[c]\n");
}

TEST_F(IniTextTest, ANewKeyStandsBelowTheSectionsCommentsAndAboveTheHeadingOfTheNext) {
  EXPECT_EQ(After("[a]\nx=1\n; end of a\n[b]\n", "a", "z", "1"), "[a]\nx=1\n; end of a\nz=1\n[b]\n");
  EXPECT_EQ(After("[a]\nx=1\n\n; about b\n; and more\n[b]\n", "a", "z", "1"),
            "[a]\nx=1\nz=1\n\n; about b\n; and more\n[b]\n");
  EXPECT_EQ(After("[a]\nx=1\n\n; about a\n\n[b]\n", "a", "z", "1"), "[a]\nx=1\n\n; about a\nz=1\n\n[b]\n");
  EXPECT_EQ(After("[a]\nx=1\n\n; end of file\n", "a", "z", "1"), "[a]\nx=1\n\n; end of file\nz=1\n");
}

TEST_F(IniTextTest, ANewSectionGoesToTheEndOfTheFileBelowABlankLine) {
  EXPECT_EQ(After("", "a", "x", "1"), "[a]\nx=1\n");
  EXPECT_EQ(After("[a]\nx=1\n", "b", "x", "1"), "[a]\nx=1\n\n[b]\nx=1\n");
  EXPECT_EQ(After("[a]\nx=1\n\n", "b", "x", "1"), "[a]\nx=1\n\n[b]\nx=1\n");
}

TEST_F(IniTextTest, ChangesALineOfOneMebibyteAndItsNeighbours) {
  const std::string longLine = "long=" + std::string(1 << 20, 'x') + "\n";
  EXPECT_EQ(After("[a]\n" + longLine + "y=1\n", "a", "y", "2"), "[a]\n" + longLine + "y=2\n");
  EXPECT_EQ(After("[a]\n" + longLine + "y=1\n", "a", "long", "2"), "[a]\nlong=2\ny=1\n");
}

TEST_F(IniTextTest, CommentSignsInAValueAreText) {
  EXPECT_EQ(After("", "a", "x", "one;two #three ;"), "[a]\nx=one;two #three ;\n");
  EXPECT_EQ(After("", "a", "x", "; all"), "[a]\nx=; all\n");
}

TEST_F(IniTextTest, QuotesAValueOnlyWhereItNeedsIt) {
  EXPECT_EQ(After("", "a", "x", "in \"the\" \\middle\t."), "[a]\nx=in \"the\" \\middle\t.\n");
  EXPECT_EQ(After("", "a", "x", " blank"), "[a]\nx=\" blank\"\n");
  EXPECT_EQ(After("", "a", "x", "blank\t"), "[a]\nx=\"blank\\t\"\n");
  EXPECT_EQ(After("", "a", "x", "\"q\""), "[a]\nx=\"\\\"q\\\"\"\n");
  EXPECT_EQ(After("", "a", "x", "\""), "[a]\nx=\"\\\"\"\n");
  EXPECT_EQ(After("", "a", "x", " \\n "), "[a]\nx=\" \\\\n \"\n");
  EXPECT_EQ(After("", "a", "x", ""), "[a]\nx=\n");
}

TEST_F(IniTextTest, ALineBreakInAValueNeverMakesALine) {
  EXPECT_EQ(After("[a]\nx=1\n[b]\ny=1\n", "a", "x", "2\n[b]\ny=9\r\n"),
            "[a]\nx=\"2\\n[b]\\ny=9\\r\\n\"\n[b]\ny=1\n");
  EXPECT_EQ(Value("b", "y", file_), "1");
  EXPECT_EQ(After("", "a", "x", "\r"), "[a]\nx=\"\\r\"\n");
}

TEST_F(IniTextTest, EveryCharacterAndEveryPairOfSpecialOnesComesBackAsItWas) {
  std::vector<std::string> values;
  for (int character = 1; character < 256; ++character) values.emplace_back(1, static_cast<char>(character));
  const std::string special = "\n\r\t\v\f \"\\;#=[]nrx";
  for (const char first : special) {
    for (const char second : special) values.push_back({first, second});
  }
  WriteFile(file_, "[a]\nbefore=1\nx=\nafter=2\n");
  for (const std::string& value : values) {
    ASSERT_TRUE(Set("a", "x", value, file_));
    ASSERT_EQ(Value("a", "x", file_), value);
  }
  EXPECT_EQ(Value("a", "before", file_), "1");
  EXPECT_EQ(Value("a", "after", file_), "2");
}

TEST_F(IniTextTest, BlanksAroundNamesDoNotCount) {
  EXPECT_EQ(After("[a]\nx=1\n", " a ", "\tx ", "2"), "[a]\nx=2\n");
  EXPECT_EQ(After("", " a b ", " x y ", "2"), "[a b]\nx y=2\n");
}

TEST_F(IniTextTest, KeepsTheLettersOfTheFileInNames) {
  EXPECT_EQ(After("[Net]\nIpAddr=1\n", "NET", "IPADDR", "2"), "[Net]\nIpAddr=2\n");
}

}  // namespace
