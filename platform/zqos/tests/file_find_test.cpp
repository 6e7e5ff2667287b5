#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <clocale>
#include <filesystem>
#include <map>
#include <string>

#include "temp_dir.h"
#include "zq_file.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
namespace fs = std::filesystem;

// Names and whether each is a folder.
using Found = std::map<std::string, bool>;

Found Find(const std::string& pattern) {
  Found found;
  zq_FindData data{};
  zq_Find* find = zq_FindFirstFile(pattern.c_str(), &data);
  for (bool more = find != nullptr; more; more = zq_FindNextFile(find, &data)) {
    EXPECT_TRUE(found.emplace(data.name, data.isDirectory).second) << data.name << " twice";
  }
  zq_FindClose(find);
  return found;
}

class FileFind : public testing::Test {
 protected:
  void Touch(const std::string& name) { WriteFile(folder_ / name, "x"); }
  Found In(const std::string& names) { return Find(folder_ / names); }

  TempDir folder_;
};

TEST_F(FileFind, AStarFindsEverythingTheFolderItselfAndHiddenNamesToo) {
  Touch("plain");
  Touch(".hidden");
  fs::create_directory(folder_ / "sub");
  EXPECT_THAT(In("*"), ElementsAre(Pair(".", true), Pair("..", true), Pair(".hidden", false),
                                   Pair("plain", false), Pair("sub", true)));
}

TEST_F(FileFind, WildcardsChooseNames) {
  for (const char* name : {"update-1.zip", "update-22.zip", "update-3.ZIP", "other.zip"}) Touch(name);
  EXPECT_THAT(In("update-*.zip"), ElementsAre(Pair("update-1.zip", false), Pair("update-22.zip", false)));
  EXPECT_THAT(In("update-?.*"), ElementsAre(Pair("update-1.zip", false), Pair("update-3.ZIP", false)));
  EXPECT_THAT(In("update-[23]*"), ElementsAre(Pair("update-22.zip", false), Pair("update-3.ZIP", false)));
  EXPECT_THAT(In("other.zip"), ElementsAre(Pair("other.zip", false)));
}

TEST_F(FileFind, LinksToFoldersAreFoldersAndOtherLinksAreNot) {
  Touch("file");
  fs::create_directory(folder_ / "sub");
  fs::create_directory_symlink("sub", folder_ / "l-folder");
  fs::create_symlink("file", folder_ / "l-file");
  fs::create_symlink("nowhere", folder_ / "l-nowhere");
  fs::create_symlink("l-self", folder_ / "l-self");
  EXPECT_THAT(In("l-*"), ElementsAre(Pair("l-file", false), Pair("l-folder", true), Pair("l-nowhere", false),
                                     Pair("l-self", false)));
}

TEST_F(FileFind, FindsThroughALinkToAFolder) {
  fs::create_directory(folder_ / "sub");
  Touch("sub/inside");
  fs::create_directory_symlink("sub", folder_ / "link");
  EXPECT_THAT(In("link/in*"), ElementsAre(Pair("inside", false)));
}

TEST_F(FileFind, NamesOfAnyBytesAreFoundInAnyLocale) {
  const std::string odd[] = {"caf\xE9", "\xFF\xFE", "two\nlines", " "};
  for (const std::string& name : odd) Touch(name);
  for (const char* locale : {"C", "C.UTF-8"}) {
    ASSERT_NE(setlocale(LC_ALL, locale), nullptr);
    const Found all = In("*");
    for (const std::string& name : odd) EXPECT_EQ(all.count(name), 1U) << locale;
    EXPECT_EQ(In("caf*").count("caf\xE9"), 1U) << locale;
    EXPECT_THAT(In("tea*"), IsEmpty()) << locale;
  }
  setlocale(LC_ALL, "C");
}

TEST_F(FileFind, TheLongestNameComesWhole) {
  const std::string longest(255, 'n');
  Touch(longest);
  EXPECT_THAT(In("n*"), ElementsAre(Pair(longest, false)));
}

TEST_F(FileFind, OnlyTheLastPartIsAPattern) {
  fs::create_directory(folder_ / "a*b");
  fs::create_directory(folder_ / "aXb");
  Touch("a*b/star");
  Touch("aXb/other");
  EXPECT_THAT(In("a*b/*r"), ElementsAre(Pair("star", false)));
}

TEST_F(FileFind, APatternWithoutAFolderLooksInTheWorkingFolder) {
  Touch("here");
  const fs::path before = fs::current_path();
  fs::current_path(folder_.Path());
  EXPECT_THAT(Find("he*"), ElementsAre(Pair("here", false)));
  fs::current_path(before);
}

TEST_F(FileFind, TheRootIsAFolderToo) {
  EXPECT_THAT(Find("/proc"), ElementsAre(Pair("proc", true)));
}

TEST_F(FileFind, NothingToFindIsNull) {
  Touch("file");
  zq_FindData data{};
  EXPECT_EQ(zq_FindFirstFile((folder_ / "nothing*").c_str(), &data), nullptr);
  EXPECT_EQ(zq_FindFirstFile((folder_ / "").c_str(), &data), nullptr);
  EXPECT_EQ(zq_FindFirstFile((folder_ / "missing/*").c_str(), &data), nullptr);
  EXPECT_EQ(zq_FindFirstFile((folder_ / "file/*").c_str(), &data), nullptr);
  EXPECT_EQ(zq_FindFirstFile("", &data), nullptr);
}

TEST_F(FileFind, NullArgumentsFindNothing) {
  zq_FindData data{};
  EXPECT_EQ(zq_FindFirstFile(nullptr, &data), nullptr);
  EXPECT_EQ(zq_FindFirstFile("/*", nullptr), nullptr);
  EXPECT_FALSE(zq_FindNextFile(nullptr, &data));
  zq_FindClose(nullptr);
}

TEST_F(FileFind, TheEndStaysTheEnd) {
  Touch("only");
  zq_FindData data{};
  zq_Find* find = zq_FindFirstFile((folder_ / "only").c_str(), &data);
  ASSERT_NE(find, nullptr);
  EXPECT_FALSE(zq_FindNextFile(find, &data));
  EXPECT_FALSE(zq_FindNextFile(find, &data));
  EXPECT_STREQ(data.name, "only");
  zq_FindClose(find);
}

TEST_F(FileFind, AFolderThatIsRemovedMeanwhileJustEnds) {
  fs::create_directory(folder_ / "sub");
  zq_FindData data{};
  zq_Find* find = zq_FindFirstFile((folder_ / "sub/*").c_str(), &data);
  ASSERT_NE(find, nullptr);
  fs::remove_all(folder_ / "sub");
  for (int i = 0; i < 3; ++i) zq_FindNextFile(find, &data);
  EXPECT_FALSE(zq_FindNextFile(find, &data));
  zq_FindClose(find);
}

TEST_F(FileFind, AThousandNamesAreEachFoundOnce) {
  for (int i = 0; i < 1000; ++i) Touch("n" + std::to_string(i));
  EXPECT_EQ(In("n*").size(), 1000U);
}

}  // namespace
