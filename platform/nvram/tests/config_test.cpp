// Which copies a fw_env.config names.
#include <gtest/gtest.h>

#include "store_config.h"
#include "temp_dir.h"

namespace {

// The copies as "path:offset:size", or what is wrong.
std::string Read(std::string_view text) {
  StoreConfig config;
  const std::string why = ParseStoreConfig(text, config);
  if (!why.empty()) return why;
  std::string all;
  for (const CopyPlace& copy : config.copies)
    all += copy.path + ":" + std::to_string(copy.offset) + ":" + std::to_string(copy.size) + " ";
  return all;
}

TEST(Config, NamesTwoCopies) {
  EXPECT_EQ(Read("/a 0x0 0x4000\n/b 0x10 0x4000\n"), "/a:0:16384 /b:16:16384 ");
}

TEST(Config, TakesOneCopyWithoutRedundancy) {
  EXPECT_EQ(Read("/a 0 0x4000\n"), "/a:0:16384 ");
}

TEST(Config, NeedsNoLastLineBreak) {
  EXPECT_EQ(Read("/a 0 100\n/b 0 100"), "/a:0:256 /b:0:256 ");
}

TEST(Config, PassesOverCommentsAndBlankLines) {
  EXPECT_EQ(Read("# copies\n\n  \t\n  # more\n/a 0 0x20\r\n#\n/b 0 0x20\r\n"), "/a:0:32 /b:0:32 ");
}

TEST(Config, ReadsSectorsAndTrailingWordsAsNothing) {
  EXPECT_EQ(Read("/dev/mtd1 0x0 0x20 0x20 2 # one\n/dev/mtd2 0 0x20 what\n"),
            "/dev/mtd1:0:32 /dev/mtd2:0:32 ");
}

TEST(Config, ReadsNothingAfterTheSecondCopy) {
  EXPECT_EQ(Read("/a 0 0x20\n/b 0 0x20\n/c 0 0x20\nnonsense\n"), "/a:0:32 /b:0:32 ");
}

TEST(Config, ReadsSizesAsHexadecimalAndOffsetsByTheirPrefix) {
  EXPECT_EQ(Read("/a 10 20\n/b -0x20 20\n"), "/a:10:32 /b:-32:32 ");
}

TEST(Config, PassesOverNonsenseWhenTwoCopiesAreNamedAllTheSame) {
  EXPECT_EQ(Read("/x\n/a 0 0x20\n/y zero 0x20\n/b 0 0x20\n"), "/a:0:32 /b:0:32 ");
}

TEST(Config, NamesTheSenselessLineWhenACopyIsMissing) {
  EXPECT_EQ(Read("/a 0 0x20\n\n/b 0\n"), "line 3 is no \"path offset size\"");
  EXPECT_EQ(Read("{ yaml: 1 }\n"), "line 1 is no \"path offset size\"");
}

TEST(Config, SaysThatItNamesNoCopy) {
  EXPECT_EQ(Read(""), "it names no copy");
  EXPECT_EQ(Read("# /a 0 0x20\n"), "it names no copy");
}

TEST(Config, RefusesSizesOutOfRange) {
  EXPECT_EQ(Read("/a 0 0xf\n"), "the size of /a is not between 0x10 and 0x1000000");
  EXPECT_EQ(Read("/a 0 0x1000001\n"), "the size of /a is not between 0x10 and 0x1000000");
  EXPECT_EQ(Read("/a 0 0xffffffffffffffffffff\n"), "the size of /a is not between 0x10 and 0x1000000");
  EXPECT_EQ(Read("/a 0 0x10\n"), "/a:0:16 ");
}

TEST(Config, RefusesCopiesOfDifferentSize) {
  EXPECT_EQ(Read("/a 0 0x20\n/b 0 0x40\n"), "the two copies differ in size");
}

TEST(Config, RefusesCopiesThatOverlap) {
  EXPECT_EQ(Read("/a 0 0x20\n/a 0 0x20\n"), "the two copies overlap");
  EXPECT_EQ(Read("/a 0x30 0x20\n/a 0x20 0x20\n"), "the two copies overlap");
  EXPECT_EQ(Read("/a -9223372036854775808 0x20\n/a 0x7fffffffffffffff 0x20\n").substr(0, 3), "/a:");
  EXPECT_EQ(Read("/a 0 0x20\n/a 0x20 0x20\n"), "/a:0:32 /a:32:32 ");
}

TEST(Config, RefusesPathsThatTheLibraryWouldCut) {
  const std::string path(256, 'p');
  EXPECT_EQ(Read(path + " 0 0x20\n"), "the path " + path + " is longer than 255 characters");
}

TEST(Config, SaysWhichFileItCannotRead) {
  StoreConfig config;
  EXPECT_EQ(ReadStoreConfig("/no/such", config), "cannot read /no/such: No such file or directory");
  const TempDir folder;
  EXPECT_EQ(ReadStoreConfig(folder / "", config), "cannot read " + folder / "" + ": Is a directory");
  EXPECT_EQ(ReadStoreConfig("/dev/zero", config), "/dev/zero is no fw_env.config: it is too long");
  WriteFile(folder / "c", "nothing\n");
  EXPECT_EQ(ReadStoreConfig(folder / "c", config), folder / "c" + ": line 1 is no \"path offset size\"");
}

TEST(Config, IsWhereTheEnvironmentSays) {
  unsetenv("ZQ_NVRAM_CONFIG");
  EXPECT_EQ(StoreConfigPath(), "/etc/fw_env.config");
  setenv("ZQ_NVRAM_CONFIG", "", 1);
  EXPECT_EQ(StoreConfigPath(), "/etc/fw_env.config");
  setenv("ZQ_NVRAM_CONFIG", "/some/where", 1);
  EXPECT_EQ(StoreConfigPath(), "/some/where");
}

}  // namespace
