#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>

#include "ini_helpers.h"
#include "temp_dir.h"
#include "trace_capture.h"

namespace {

class IniReadTest : public testing::Test {
 protected:
  void Has(const std::string& bytes) { WriteFile(file_, bytes); }
  std::string Text(const char* section, const char* key) const { return Value(section, key, file_); }
  int32_t Int(const char* key, int32_t fallback = -7) const {
    return zq_GetINIFileInt("s", key, fallback, file_.c_str());
  }
  bool Yes(const char* key, const char* fallback) const {
    return zq_GetINIFileAffirmative("s", key, fallback, file_.c_str());
  }

  TempDir folder_;
  std::string file_ = folder_ / "settings.ini";
};

TEST_F(IniReadTest, ComparesSectionsAndKeysWithoutRegardToAsciiCase) {
  Has("[Net]\nIpAddr=1\n[\xC3\x84]\nk=upper\n");
  EXPECT_EQ(Text("nET", "iPaDDR"), "1");
  EXPECT_EQ(Text("\xC3\xA4", "k"), "(missing)");
}

TEST_F(IniReadTest, TakesTheLastOfEqualKeysAndSections) {
  Has("[a]\nx=1\nx=2\n[b]\nx=3\n[A]\nX=4\ny=5\n[b]\n");
  EXPECT_EQ(Text("a", "x"), "4");
  EXPECT_EQ(Text("a", "y"), "5");
  EXPECT_EQ(Text("b", "x"), "3");
}

TEST_F(IniReadTest, AValueIsTheTextToTheEndOfTheLineWithoutBlanks) {
  Has("[s]\n  a \t= \t one two ; not # a comment \t\r\nb=\nc=x=y\nd='q'\ne=a\"b\nf = # ;\n");
  EXPECT_EQ(Text("s", "a"), "one two ; not # a comment");
  EXPECT_EQ(Text("s", "b"), "");
  EXPECT_EQ(Text("s", "c"), "x=y");
  EXPECT_EQ(Text("s", "d"), "'q'");
  EXPECT_EQ(Text("s", "e"), "a\"b");
  EXPECT_EQ(Text("s", "f"), "# ;");
}

TEST_F(IniReadTest, TakesAQuotedValueOutOfItsQuotes) {
  Has(R"([s]
blanks = "  x  "
breaks="a\nb\r\tc\"d\\e"
empty=""
other="\x\q"
)");
  EXPECT_EQ(Text("s", "blanks"), "  x  ");
  EXPECT_EQ(Text("s", "breaks"), "a\nb\r\tc\"d\\e");
  EXPECT_EQ(Text("s", "empty"), "");
  EXPECT_EQ(Text("s", "other"), "\\x\\q");
}

TEST_F(IniReadTest, LeavesTextAloneThatOnlyBeginsLikeAQuotedValue) {
  Has(R"([s]
open="abc
one="
two="a" and "b"
escaped="abc\"
)");
  EXPECT_EQ(Text("s", "open"), "\"abc");
  EXPECT_EQ(Text("s", "one"), "\"");
  EXPECT_EQ(Text("s", "two"), "\"a\" and \"b\"");
  EXPECT_EQ(Text("s", "escaped"), "\"abc\\\"");
}

TEST_F(IniReadTest, CommentsAndUnknownLinesAreNoSettings) {
  Has("[s]\n;a=1\n  # b=2\nc\n=d\n[s2] ; [s]\ne=5\n");
  EXPECT_EQ(Text("s", ";a"), "(missing)");
  EXPECT_EQ(Text("s", "a"), "(missing)");
  EXPECT_EQ(Text("s", "# b"), "(missing)");
  EXPECT_EQ(Text("s", "c"), "(missing)");
  EXPECT_EQ(Text("s", ""), "(missing)");
  EXPECT_EQ(Text("s", "e"), "(missing)");
  EXPECT_EQ(Text("s2", "e"), "5");
}

TEST_F(IniReadTest, ReadsWhatStandsBeforeTheFirstSectionUnderTheEmptyName) {
  Has("\xEF\xBB\xBFx=1\n[s]\nx=2\n");
  EXPECT_EQ(Text("", "x"), "1");
  EXPECT_EQ(Text(nullptr, "x"), "1");
}

TEST_F(IniReadTest, ReadsThroughByteOrderMarkCrLfAndAMissingLastNewline) {
  Has("\xEF\xBB\xBF[s]\r\nx=1\r\ny=2");
  EXPECT_EQ(Text("s", "x"), "1");
  EXPECT_EQ(Text("s", "y"), "2");
}

TEST_F(IniReadTest, AnUnterminatedSectionStillOpensOne) {
  Has("[net]\nx=1\n[conf\nx=2\n[conf2");
  EXPECT_EQ(Text("net", "x"), "1");
  EXPECT_EQ(Text("conf", "x"), "2");
  EXPECT_EQ(Text("conf2", "x"), "(missing)");
}

TEST_F(IniReadTest, ReadsAroundALineOfOneMebibyteAndNulBytes) {
  Has("[s]\nlong=" + std::string(1 << 20, 'x') + "\n" + std::string("n\0l=3\n\0\nz=a\0b\n", 14) + "end=4\n");
  EXPECT_EQ(Text("s", "long"), std::string(1 << 20, 'x'));
  EXPECT_EQ(Text("s", "end"), "4");
  EXPECT_EQ(Text("s", "z"), std::string("a\0b", 3));
}

TEST_F(IniReadTest, AnEmptyAndAMissingFileHoldNothingAndSaySoQuietly) {
  const TraceCapture trace;
  EXPECT_EQ(Text("s", "x"), "(missing)");
  Has("");
  EXPECT_EQ(Text("s", "x"), "(missing)");
  EXPECT_TRUE(trace.Texts().empty());
}

TEST_F(IniReadTest, TracesAFolderInTheFilesPlaceAndGivesTheFallback) {
  std::filesystem::create_directory(file_);
  const TraceCapture trace;
  EXPECT_EQ(Int("x"), -7);
  EXPECT_EQ(trace.Texts(), std::vector<std::string>{"INI: cannot read " + file_ + ": Is a directory"});
}

TEST_F(IniReadTest, DoesNotWaitForTheOtherEndOfAPipe) {
  ASSERT_EQ(mkfifo(file_.c_str(), 0644), 0);
  EXPECT_EQ(Int("x"), -7);
}

TEST_F(IniReadTest, GivesTheFallbackForAFileThatMayNotBeRead) {
  Has("[s]\nx=1\n");
  std::filesystem::permissions(folder_.Path(), std::filesystem::perms::all);
  std::filesystem::permissions(file_, std::filesystem::perms::none);
  // Root may read everything, so a child asks as somebody else.
  const pid_t child = InChild([this] {
    if (geteuid() == 0 && setuid(65534) != 0) return 2;
    return Int("x") == -7 ? 0 : 1;
  });
  EXPECT_EQ(AwaitChild(child), 0);
}

TEST_F(IniReadTest, RefusesAFileOfMoreThan64MebibytesAndSaysWhy) {
  Has("[s]\nx=1\n");
  std::filesystem::resize_file(file_, 64 << 20);
  EXPECT_EQ(Int("x"), 1);
  std::filesystem::resize_file(file_, (64 << 20) + 1);
  const TraceCapture trace;
  EXPECT_EQ(Int("x"), -7);
  EXPECT_EQ(trace.Texts(), std::vector<std::string>{"INI: cannot read " + file_ + ": File too large"});
}

TEST_F(IniReadTest, ReadsTheDecimalNumberAtTheStart) {
  Has("[s]\na=42\nb=-42\nc=+7up\nd=0x10\ne=007\nf=12.9\ng=\" 5\"\n");
  EXPECT_EQ(Int("a"), 42);
  EXPECT_EQ(Int("b"), -42);
  EXPECT_EQ(Int("c"), 7);
  EXPECT_EQ(Int("d"), 0);
  EXPECT_EQ(Int("e"), 7);
  EXPECT_EQ(Int("f"), 12);
  EXPECT_EQ(Int("g"), 5);
}

TEST_F(IniReadTest, GivesTheFallbackWhereThereIsNoNumber) {
  Has("[s]\na=\nb=x1\nc=-\nd=- 1\ne=+-1\n");
  for (const char* key : {"a", "b", "c", "d", "e", "missing"}) EXPECT_EQ(Int(key), -7) << key;
}

TEST_F(IniReadTest, LimitsANumberToTheRangeOf32Bits) {
  Has("[s]\na=2147483647\nb=2147483648\nc=-2147483648\nd=-2147483649\ne=" + std::string(400, '9') + "\nf=-" +
      std::string(400, '9') + "\n");
  EXPECT_EQ(Int("a"), INT32_MAX);
  EXPECT_EQ(Int("b"), INT32_MAX);
  EXPECT_EQ(Int("c"), INT32_MIN);
  EXPECT_EQ(Int("d"), INT32_MIN);
  EXPECT_EQ(Int("e"), INT32_MAX);
  EXPECT_EQ(Int("f"), INT32_MIN);
}

TEST_F(IniReadTest, FourWordsInAnyCaseAreAffirmative) {
  Has("[s]\na=yes\nb=TRUE\nc=On\nd=1\ne=\"1\"\nf=no\ng=\nh=2\ni=yes!\nj=y\nk=01\n");
  for (const char* key : {"a", "b", "c", "d", "e"}) EXPECT_TRUE(Yes(key, "no")) << key;
  for (const char* key : {"f", "g", "h", "i", "j", "k"}) EXPECT_FALSE(Yes(key, "yes")) << key;
}

TEST_F(IniReadTest, AMissingKeyIsAsAffirmativeAsItsFallback) {
  EXPECT_TRUE(Yes("x", "Yes"));
  EXPECT_TRUE(Yes("x", "1"));
  EXPECT_FALSE(Yes("x", "nope"));
  EXPECT_FALSE(Yes("x", nullptr));
}

class IniCutTest : public IniReadTest {
 protected:
  // What stands in a buffer of `room` bytes after reading into `size` of them.
  std::string Read(size_t size, size_t room, size_t* count) const {
    std::string buffer(room, '#');
    *count = zq_GetINIFileString("s", "x", "fallback", buffer.data(), size, file_.c_str());
    return buffer;
  }
};

TEST_F(IniCutTest, AValueOf1024BytesIsReadWholeInto1024) {
  Has("[s]\nx=" + std::string(1024, 'v') + "\n");
  size_t count = 0;
  EXPECT_EQ(Read(1024, 1025, &count), std::string(1024, 'v') + "#");
  EXPECT_EQ(count, 1024U);
}

TEST_F(IniCutTest, AValueOf1025BytesIsCutTo1024) {
  Has("[s]\nx=" + std::string(1025, 'v') + "\n");
  size_t count = 0;
  EXPECT_EQ(Read(1024, 1025, &count), std::string(1024, 'v') + "#");
  EXPECT_EQ(count, 1024U);
}

TEST_F(IniCutTest, ANulFollowsOnlyWhereThereIsRoom) {
  Has("[s]\nx=abc\n");
  size_t count = 0;
  EXPECT_EQ(Read(4, 6, &count), std::string("abc\0##", 6));
  EXPECT_EQ(count, 3U);
  EXPECT_EQ(Read(3, 6, &count), "abc###");
  EXPECT_EQ(Read(0, 6, &count), "######");
  EXPECT_EQ(count, 0U);
}

TEST_F(IniCutTest, CutsOnlyBetweenCharacters) {
  Has("[s]\nx=a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80z\n");
  const size_t expected[] = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10, 11, 11};
  for (size_t size = 0; size < std::size(expected); ++size) {
    size_t count = 0;
    Read(size, 20, &count);
    EXPECT_EQ(count, expected[size]) << size;
  }
}

TEST_F(IniCutTest, CutsBytesThatAreNoUtf8WhereTheRoomEnds) {
  Has("[s]\nx=a\xE4"
      "bc\x80\x80\x80\x80\x80\xF0\n");
  for (size_t size = 0; size < 10; ++size) {
    size_t count = 0;
    Read(size, 20, &count);
    EXPECT_EQ(count, size);
  }
}

TEST_F(IniCutTest, AMissingKeyGivesTheFallbackCutLikeAValue) {
  size_t count = 0;
  EXPECT_EQ(Read(4, 5, &count), "fall#");
  EXPECT_EQ(count, 4U);
  char buffer[2] = {'#', '#'};
  EXPECT_EQ(zq_GetINIFileString("s", "x", nullptr, buffer, 2, file_.c_str()), 0U);
  EXPECT_EQ(buffer[0], '\0');
  EXPECT_EQ(zq_GetINIFileString("s", "x", "text", nullptr, 9, file_.c_str()), 0U);
}

class IniPathTest : public testing::Test {
 protected:
  IniPathTest() { setenv("ZQ_CONFIG_DIR", folder_.Path().c_str(), 1); }
  ~IniPathTest() override { unsetenv("ZQ_CONFIG_DIR"); }

  TempDir folder_;
  char path_[4096] = {};
};

TEST_F(IniPathTest, ABareNameLiesInTheConfigurationFolder) {
  ASSERT_TRUE(zq_INIFilePath("a.ini", path_, sizeof path_));
  EXPECT_EQ(std::string(path_), folder_ / "a.ini");
  ASSERT_TRUE(Set("s", "x", "1", "a.ini"));
  EXPECT_EQ(ReadFile(folder_ / "a.ini"), "[s]\nx=1\n");
  EXPECT_EQ(Value("s", "x", "a.ini"), "1");
}

TEST_F(IniPathTest, ANameWithASlashIsAPath) {
  ASSERT_TRUE(zq_INIFilePath("./a.ini", path_, sizeof path_));
  EXPECT_STREQ(path_, "./a.ini");
}

TEST_F(IniPathTest, ABareNameLiesInTheWorkingDirectoryWhenNoFolderIsSet) {
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder_.Path());
  for (const bool empty : {false, true}) {
    empty ? setenv("ZQ_CONFIG_DIR", "", 1) : unsetenv("ZQ_CONFIG_DIR");
    ASSERT_TRUE(Set("s", "x", empty ? "2" : "1", "b.ini"));
    EXPECT_EQ(ReadFile(folder_ / "b.ini"), empty ? "[s]\nx=2\n" : "[s]\nx=1\n");
  }
  std::filesystem::current_path(before);
}

TEST_F(IniPathTest, APathThatDoesNotFitIsRefused) {
  const size_t needed = (folder_ / "a.ini").size() + 1;
  EXPECT_FALSE(zq_INIFilePath("a.ini", path_, needed - 1));
  EXPECT_STREQ(path_, "");
  EXPECT_TRUE(zq_INIFilePath("a.ini", path_, needed));
  EXPECT_FALSE(zq_INIFilePath("", path_, sizeof path_));
  EXPECT_FALSE(zq_INIFilePath(nullptr, path_, sizeof path_));
  EXPECT_FALSE(zq_INIFilePath("a.ini", nullptr, 0));
}

}  // namespace
