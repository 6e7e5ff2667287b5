// The list of time zones: what the walk finds, and in which order it is shown.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "TimeZoneTable.h"
#include "ZQDateTime.h"
#include "file_rights.h"
#include "time_zone_texts.h"
#include "zone_tree.h"
#include "zq_memory.h"

namespace fs = std::filesystem;

// So many of the list's allocations succeed and one then fails; below 0 none does. The module finds these before the
// platform's own.
static int g_untilFailure = -1;
static bool Refused() {
  return g_untilFailure >= 0 && g_untilFailure-- == 0;
}
extern "C" __attribute__((visibility("default"))) void* zq__calloc(size_t count, size_t size,
                                                                   const char* file, int line) {
  static const auto next = reinterpret_cast<decltype(&zq__calloc)>(dlsym(RTLD_NEXT, "zq__calloc"));
  return Refused() ? nullptr : next(count, size, file, line);
}
extern "C" __attribute__((visibility("default"))) char* zq__newString(const char* text, const char* file,
                                                                      int line) {
  static const auto next = reinterpret_cast<decltype(&zq__newString)>(dlsym(RTLD_NEXT, "zq__newString"));
  return Refused() ? nullptr : next(text, file, line);
}

namespace {

std::vector<std::string> Rows(const std::string& text) {
  std::vector<std::string> rows;
  for (size_t start = 1; start < text.size();) {
    const size_t end = text.find('\n', start);
    rows.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return rows;
}

std::string Text(const std::vector<std::string>& rows) {
  std::string text = "\n";
  for (const std::string& row : rows) text += row + "\n";
  return text;
}

std::string Shown(ZQDateTime& dateTime) {
  std::vector<std::string> rows;
  const zq_List& list = *dateTime.getTZList();
  for (const auto* place = list.First(); place != nullptr; place = list.Next(place)) {
    rows.push_back(static_cast<const TimeZoneNode*>(list.Record(place))->description);
  }
  return Text(rows);
}

std::string Shown() {
  ZQDateTime dateTime(true);
  return Shown(dateTime);
}

class TimeZoneListTest : public testing::Test {
 protected:
  std::string Traces() const { return Text(trace.Texts()); }

  const TraceCapture trace;
};

TEST_F(TimeZoneListTest, TheTableIsWhatUsersKnow) {
  std::vector<std::string> rows;
  for (const TimeZoneRow& row : tztable) rows.push_back(std::string(row.path) + "|" + row.description);
  EXPECT_EQ(Text(rows), kTableText);
  EXPECT_EQ(dlsym(RTLD_DEFAULT, "tztable"), static_cast<const void*>(tztable));
}

TEST_F(TimeZoneListTest, AllZonesAreShownFromAtlanticOnAndThenWhatSortsBefore) {
  const ZoneTree tree;
  tree.InstallAll();
  ZQDateTime dateTime(true);
  EXPECT_EQ(Shown(dateTime), kDisplayText);
  EXPECT_EQ(dateTime.getTZList()->Name(), std::string("Timezone List"));
  EXPECT_TRUE(trace.Has("ZQUtil Timezone Node Count 76"));
}

TEST_F(TimeZoneListTest, EveryMissingZoneLeavesTheOthersInOrder) {
  const ZoneTree tree;
  tree.InstallAll();
  const std::vector<std::string> all = Rows(kDisplayText);
  for (const TimeZoneRow& row : tztable) {
    const fs::path file = tree.Place(std::string(row.path).substr(sizeof kZoneFolder));
    fs::remove(file);
    std::vector<std::string> expected = all;
    std::erase(expected, row.description);
    if (row.path == std::string("/usr/share/zoneinfo/Canada/Atlantic")) std::ranges::sort(expected);
    EXPECT_EQ(Shown(), Text(expected)) << row.path;
    WriteFile(file, "");
  }
}

TEST_F(TimeZoneListTest, TheZonesOfThisMachineAreFound) {
  std::vector<std::string> expected = Rows(kDisplayText);
  size_t missing = 0;
  for (const TimeZoneRow& row : tztable) {
    if (!fs::exists(row.path)) missing += std::erase(expected, row.description);
  }
  ASSERT_LT(missing, 10U) << "tzdata is not installed";
  EXPECT_EQ(Shown(), Text(expected));
}

TEST_F(TimeZoneListTest, ATreeThatIsMissingOrEmptyGivesNoZones) {
  {
    const ZoneTree tree;
    EXPECT_EQ(Shown(), "\n");
    fs::remove_all(tree.Place(""));
    WriteFile(OnThisMachine(kZoneFolder), "a file in its place");
    EXPECT_EQ(Shown(), "\n");
  }
  EXPECT_EQ(Traces(), "\nZQUtil Timezone Node Count 0\nZQUtil Timezone Node Count 0\n");
}

TEST_F(TimeZoneListTest, NodesHaveThePathAsFoundAndTheTablesDescription) {
  const ZoneTree tree;
  tree.Install("US/Eastern");
  ZQDateTime dateTime(true);
  const zq_List& list = *dateTime.getTZList();
  ASSERT_EQ(list.Count(), 1U);
  const auto* const node = static_cast<const TimeZoneNode*>(list.Record(list.First()));
  EXPECT_STREQ(node->path, "/usr/share/zoneinfo/US/Eastern");
  EXPECT_STREQ(node->description, "(GMT-05:00) Eastern Time (US & Canada)");
  EXPECT_EQ(Traces(), "\nZQUtil node is a directory US\nZQUtil Timezone Node Count 1\n");
}

TEST_F(TimeZoneListTest, CopiesOfTheTreeAreLeftOutAtAnyDepth) {
  const ZoneTree tree;
  for (const char* const file : {"posix/US/Eastern", "right/US/Eastern", "US/posix/a/b", "US/right/a/b"})
    tree.Install(file);
  tree.Install("posixrules");
  tree.Install("Etc/posix");  // a file of that name is no copy
  tree.Install("Right/x");
  Shown();
  std::vector<std::string> texts = trace.Texts();
  std::ranges::sort(texts);
  EXPECT_EQ(Text(texts),
            "\nZQUtil Timezone Node Count 0\nZQUtil node is a directory Etc\n"
            "ZQUtil node is a directory Right\nZQUtil node is a directory US\n");
}

TEST_F(TimeZoneListTest, AFolderInAZonesPlaceIsNone) {
  const ZoneTree tree;
  tree.Install("US/Eastern/within");
  tree.Install("GMT");
  EXPECT_EQ(Shown(), "\n(GMT+00:00) Greenwich Mean Time: Dublin, Edinburgh, Lisbon, London\n");
}

TEST_F(TimeZoneListTest, ALinkThatLeadsNowhereCountsAsTheFileThatItStandsFor) {
  const ZoneTree tree;
  fs::create_symlink("nowhere", tree.Place("GMT"));
  EXPECT_EQ(Shown(), "\n(GMT+00:00) Greenwich Mean Time: Dublin, Edinburgh, Lisbon, London\n");
}

TEST_F(TimeZoneListTest, ALinkedFolderIsWalkedUnderEachOfItsNames) {
  const ZoneTree tree;
  tree.Install("Real/Eastern");
  tree.Install("Real/Atlantic");
  fs::create_directory_symlink("Real", tree.Place("US"));
  fs::create_directory_symlink("Real", tree.Place("Canada"));
  EXPECT_EQ(Shown(), "\n(GMT-04:00) Atlantic Time (Canada)\n(GMT-05:00) Eastern Time (US & Canada)\n");
}

TEST_F(TimeZoneListTest, ALoopThatAZoneLiesOnIsFollowed) {
  const ZoneTree tree;
  tree.Install("Eastern");
  fs::create_directory_symlink(".", tree.Place("US"));
  EXPECT_EQ(Shown(), "\n(GMT-05:00) Eastern Time (US & Canada)\n");
}

TEST_F(TimeZoneListTest, FoldersThatContainEachOtherInManyWaysEndTheWalk) {
  const ZoneTree tree;
  tree.InstallAll();
  for (int from = 0; from < 20; ++from) {
    const std::string folder = "loop" + std::to_string(from);
    fs::create_directory(tree.Place(folder));
    for (int to = 0; to < 20; ++to) {
      fs::create_directory_symlink("../loop" + std::to_string(to),
                                   tree.Place(folder + "/" + std::to_string(to)));
    }
    fs::create_directory_symlink("..", tree.Place(folder + "/up"));
    fs::create_directory_symlink("../" + folder, tree.Place("US/" + folder));
  }
  EXPECT_EQ(Shown(), kDisplayText);
}

TEST_F(TimeZoneListTest, AChainOfFoldersWithoutEndIsNotFollowedToIt) {
  const ZoneTree tree;
  std::string chain = "Etc";
  for (int i = 0; i < 300; ++i) chain += "/d";
  fs::create_directories(tree.Place(chain));
  tree.Install("GMT");
  EXPECT_EQ(Shown(), "\n(GMT+00:00) Greenwich Mean Time: Dublin, Edinburgh, Lisbon, London\n");
  EXPECT_LT(trace.Texts().size(), 100U);
}

TEST_F(TimeZoneListTest, FoldersThatCannotBeReadAreEmpty) {
  const ZoneTree tree;
  tree.InstallAll();
  fs::permissions(tree.Place("US"), fs::perms::none);
  const std::string shown = [] {
    const OrdinaryFileRights ordinary;
    return Shown();
  }();
  fs::permissions(tree.Place("US"), fs::perms::owner_all);
  std::vector<std::string> expected = Rows(kDisplayText);
  for (const TimeZoneRow& row : tztable) {
    if (std::string(row.path).starts_with("/usr/share/zoneinfo/US/")) std::erase(expected, row.description);
  }
  ASSERT_EQ(expected.size(), 68U);
  EXPECT_EQ(shown, Text(expected));
}

TEST_F(TimeZoneListTest, OddNamesAreOnlyNames) {
  const ZoneTree tree;
  tree.InstallAll();
  for (const std::string& name :
       {std::string("\xff\xfe"), std::string("a\nb"), std::string("%s%n%s%n"), std::string("*"),
        std::string("..."), std::string(" "), std::string("\x01\x7f"), std::string(255, 'x')}) {
    tree.Install(name + "/" + name);
    tree.Install("Etc/" + name);
    fs::create_directory_symlink(name, tree.Place("l" + name.substr(0, 200)));
  }
  EXPECT_EQ(Shown(), kDisplayText);
  EXPECT_TRUE(trace.Has("ZQUtil node is a directory %s%n%s%n"));
  EXPECT_TRUE(trace.Has("ZQUtil node is a directory \xff\xfe"));
}

TEST_F(TimeZoneListTest, FiftyThousandOtherFilesDoNotHideTheZones) {
  const ZoneTree tree;
  tree.InstallAll();
  for (int i = 0; i < 50000; ++i) WriteFile(tree.Place("US/Eastern" + std::to_string(i)), "");
  EXPECT_EQ(Shown(), kDisplayText);
}

TEST_F(TimeZoneListTest, OnlyWholePathsOfTheTableCount) {
  const ZoneTree tree;
  for (const char* const file :
       {"us/eastern", "US/eastern", "US/Easter", "US/EasternX", "gmt", "Eastern", "x/US/Eastern"})
    tree.Install(file);
  EXPECT_EQ(Shown(), "\n");
}

TEST_F(TimeZoneListTest, AnotherFoldersFilesAreNoZones) {
  zq_List list("list", "test", __LINE__);
  const TempDir folder;
  WriteFile(folder / "GMT", "");
  ZQDateTime::ConstructTimeZoneTable(folder.Path().c_str(), &list);
  ZQDateTime::ConstructTimeZoneTable("/usr/share/zoneinfo/none", &list);
  ZQDateTime::ConstructTimeZoneTable(nullptr, &list);
  ZQDateTime::ConstructTimeZoneTable("/usr/share/zoneinfo", nullptr);
  EXPECT_EQ(list.Count(), 0U);
}

TEST_F(TimeZoneListTest, AZoneThatThereIsNoMemoryForIsLeftOut) {
  const ZoneTree tree;
  for (const char* const file : {"Canada/Atlantic", "US/Eastern", "GMT"}) tree.Install(file);
  // A node, its path and its description for each.
  for (int allocations = 0; allocations < 9; ++allocations) {
    g_untilFailure = allocations;
    const ZQDateTime dateTime(true);
    EXPECT_LT(g_untilFailure, 0) << "none failed";
    EXPECT_TRUE(trace.Has("ZQUtil Timezone Node Count 2"));
  }
  EXPECT_FALSE(trace.Has("ZQUtil Timezone Node Count 3"));
}

TEST_F(TimeZoneListTest, ZonesInstalledLaterAreNotSeen) {
  const ZoneTree tree;
  tree.Install("GMT");
  ZQDateTime dateTime(true);
  tree.Install("US/Eastern");
  EXPECT_EQ(dateTime.getTZList()->Count(), 1U);
}

}  // namespace
