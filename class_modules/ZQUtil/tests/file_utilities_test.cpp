// Paths and copies.
#include <filesystem>

#include "ZQFileUtilities.h"
#include "module_fixture.h"

namespace {

namespace fs = std::filesystem;

std::string Basename(const char* path) {
  _ZqString* const name = ZQBasename(path);
  std::string text = zq_StringText(name);
  zq_StringDestroy(name);
  return text;
}

TEST(TrimmedPathLength, LeavesOutTrailingSlashesButNotTheRoot) {
  EXPECT_EQ(ZQTrimmedPathLength("///"), 1U);
  EXPECT_EQ(ZQTrimmedPathLength("/usr/"), 4U);
  EXPECT_EQ(ZQTrimmedPathLength("a"), 1U);
  EXPECT_EQ(ZQTrimmedPathLength("/"), 1U);
  EXPECT_EQ(ZQTrimmedPathLength(""), 0U);
  EXPECT_EQ(ZQTrimmedPathLength("a//"), 1U);
  EXPECT_EQ(ZQTrimmedPathLength("/usr/lib"), 8U);
}

TEST(Basename, IsTheLastComponentWithOneTrailingSlash) {
  EXPECT_EQ(Basename("/"), "/");
  EXPECT_EQ(Basename("//"), "/");
  EXPECT_EQ(Basename("///"), "/");
  EXPECT_EQ(Basename(""), "");
  EXPECT_EQ(Basename("dir/"), "dir/");
  EXPECT_EQ(Basename("a/b/c"), "c");
  EXPECT_EQ(Basename("/usr/lib/"), "lib/");
  EXPECT_EQ(Basename("/usr/lib//"), "lib/");
  EXPECT_EQ(Basename("/usr/lib"), "lib");
  EXPECT_EQ(Basename("file"), "file");
  EXPECT_EQ(Basename("//a"), "a");
  EXPECT_EQ(Basename("a//b"), "b");
}

class CopyFileTest : public ModuleTest {
 protected:
  CopyFileTest() {
    fs::create_directories("/updates");
    WriteFile("/tmp/app-1.tgz", "package");
  }
  ~CopyFileTest() override {
    fs::remove_all("/updates");
    for (const char* file : {"/tmp/app-1.tgz", "/tmp/copy", "/tmp/link"}) fs::remove(file);
  }
};

TEST_F(CopyFileTest, AFolderGetsTheFileUnderItsName) {
  EXPECT_TRUE(ZQCopyFile("/tmp/app-1.tgz", "/updates"));
  EXPECT_EQ(ReadFile("/updates/app-1.tgz"), "package");
}

TEST_F(CopyFileTest, AnOlderFileIsReplaced) {
  WriteFile("/updates/app-1.tgz", "an older and longer one");
  EXPECT_TRUE(ZQCopyFile("/tmp/app-1.tgz", "/updates/"));
  EXPECT_EQ(ReadFile("/updates/app-1.tgz"), "package");
}

TEST_F(CopyFileTest, ADestinationThatIsNoFolderIsTheTarget) {
  EXPECT_TRUE(ZQCopyFile("/tmp/app-1.tgz", "/tmp/copy"));
  EXPECT_EQ(ReadFile("/tmp/copy"), "package");
  EXPECT_TRUE(ZQCopyFile("/updates/../tmp/app-1.tgz", "/tmp/copy"));
}

TEST_F(CopyFileTest, ALinkToAFolderIsAFolder) {
  fs::create_directory_symlink(OnThisMachine("/updates"), "/tmp/link");
  EXPECT_TRUE(ZQCopyFile("/tmp/app-1.tgz", "/tmp/link"));
  EXPECT_EQ(ReadFile("/updates/app-1.tgz"), "package");
}

TEST_F(CopyFileTest, WhatCannotBeCopiedIsFalse) {
  EXPECT_FALSE(ZQCopyFile("/tmp/none", "/updates"));
  EXPECT_FALSE(ZQCopyFile("", "/updates"));
  EXPECT_FALSE(ZQCopyFile("/tmp/app-1.tgz", "/no-such-folder/x"));
  EXPECT_FALSE(ZQCopyFile("/tmp/app-1.tgz/", "/updates")) << "the trailing slash stays";
  EXPECT_FALSE(ZQCopyFile("/tmp/app-1.tgz", ""));
}

}  // namespace
