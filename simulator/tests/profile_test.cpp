#include "profile.h"

#include <gtest/gtest.h>

#include "temp_dir.h"

namespace {

std::string ErrorOf(const std::string& text) {
  std::string error;
  EXPECT_FALSE(ParseProfile(text, error).has_value());
  return error;
}

TEST(Profile, SaysWhatItIsAndItsFolders) {
  std::string error;
  const auto profile = ParseProfile("# comment\nabout  a small device \n\n dir tmp 1777\ndir a/b 700", error);
  ASSERT_TRUE(profile.has_value()) << error;
  EXPECT_EQ(profile->about, "a small device ");
  ASSERT_EQ(profile->folders.size(), 2U);
  EXPECT_EQ(profile->folders[0].path, "tmp");
  EXPECT_EQ(profile->folders[0].mode, 01777U);
  EXPECT_EQ(profile->folders[1].path, "a/b");
  EXPECT_EQ(profile->folders[1].mode, 0700U);
}

TEST(Profile, NamesTheLineThatIsWrong) {
  EXPECT_EQ(ErrorOf("about a\nfile tmp 755\n"), "line 2: file tmp 755");
  EXPECT_EQ(ErrorOf("dir tmp"), "line 1: dir tmp");
  EXPECT_EQ(ErrorOf("dir tmp 755 more"), "line 1: dir tmp 755 more");
  EXPECT_EQ(ErrorOf("dir tmp 789"), "line 1: dir tmp 789");
  EXPECT_EQ(ErrorOf("dir tmp 17777"), "line 1: dir tmp 17777");
  EXPECT_EQ(ErrorOf("dir tmp 99999999999999999999"), "line 1: dir tmp 99999999999999999999");
}

TEST(Profile, MakesNoFolderOutsideTheDevice) {
  EXPECT_EQ(ErrorOf("dir /tmp 755"), "line 1: dir /tmp 755");
  EXPECT_EQ(ErrorOf("dir a/../../b 755"), "line 1: dir a/../../b 755");
}

TEST(Profile, IsAFolderWithItsText) {
  const TempDir profiles;
  std::filesystem::create_directories(profiles / "b");
  std::filesystem::create_directories(profiles / "a");
  std::filesystem::create_directories(profiles / "none");
  WriteFile(profiles / "b/profile.txt", "about b\n");
  WriteFile(profiles / "a/profile.txt", "about a\n");
  EXPECT_EQ(ProfileNames(profiles.Path()), (std::vector<std::string>{"a", "b"}));
  EXPECT_TRUE(ProfileNames(profiles / "nowhere").empty());
}

TEST(Profile, ReadOnlyFilesBecomeWritableOnes) {
  const TempDir work;
  std::filesystem::create_directories(work / "profile/etc");
  std::filesystem::create_directories(work / "device");
  WriteFile(work / "profile/profile.txt", "dir tmp 1777\n");
  WriteFile(work / "profile/etc/tag", "x");
  std::filesystem::permissions(work / "profile/etc/tag", std::filesystem::perms::owner_read);
  std::string error;
  ASSERT_TRUE(CopyProfile(work / "profile", work / "device", error)) << error;
  EXPECT_EQ(std::filesystem::status(work / "device/etc/tag").permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  EXPECT_EQ(static_cast<int>(std::filesystem::status(work / "device/tmp").permissions()), 01777);
  EXPECT_FALSE(std::filesystem::exists(work / "device/profile.txt"));
}

}  // namespace
