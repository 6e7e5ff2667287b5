#include "lexical_path.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string Normal(std::string_view path) {
  std::string buffer(path.size() + 1, '?');
  buffer.resize(NormalizePath(path, buffer.data(), buffer.size()));
  return buffer;
}

TEST(LexicalPath, TellsPathsWhoseTextAloneDoesNotSayWhereTheyLead) {
  for (const char* dotted :
       {"//etc", "/etc//a", "/./etc", "/etc/.", "/etc/..", "/../etc", "/etc/../a", "/etc/a//"}) {
    EXPECT_TRUE(HasDots(dotted)) << dotted;
  }
  for (const char* plain :
       {"/", "/etc", "/etc/", "/etc/.hidden", "/etc/..hidden", "/etc/...", "/a.b/c..", "/.a"}) {
    EXPECT_FALSE(HasDots(plain)) << plain;
  }
}

TEST(LexicalPath, LeavesOutEmptyAndDotPartsAndGoesUpAtTwoDots) {
  EXPECT_EQ(Normal("/etc/a"), "/etc/a");
  EXPECT_EQ(Normal("//etc///a"), "/etc/a");
  EXPECT_EQ(Normal("/./etc/./a"), "/etc/a");
  EXPECT_EQ(Normal("/home/../etc/a"), "/etc/a");
  EXPECT_EQ(Normal("/../../etc"), "/etc");
  EXPECT_EQ(Normal("/a/b/c/../../d"), "/a/d");
  EXPECT_EQ(Normal("/etc/..."), "/etc/...");
}

TEST(LexicalPath, KeepsTheWishForAFolder) {
  EXPECT_EQ(Normal("/etc/"), "/etc/");
  EXPECT_EQ(Normal("/etc//"), "/etc/");
  EXPECT_EQ(Normal("/etc/."), "/etc/");
  EXPECT_EQ(Normal("/etc/a/.."), "/etc/");
  EXPECT_EQ(Normal("/.."), "/");
  EXPECT_EQ(Normal("/"), "/");
}

TEST(LexicalPath, WritesNothingBeyondTheBuffer) {
  char buffer[4] = {'?', '?', '?', '?'};
  EXPECT_EQ(NormalizePath("/abc", buffer, 3), 0U);
  EXPECT_EQ(buffer[3], '?');
  EXPECT_EQ(NormalizePath("/abc", buffer, 4), 4U);
  EXPECT_EQ(NormalizePath("/abc/", buffer, 4), 0U);
}

TEST(LexicalPath, APrefixEndsWithAPart) {
  EXPECT_TRUE(IsAtOrBelow("/tmp", "/tmp"));
  EXPECT_TRUE(IsAtOrBelow("/tmp/", "/tmp"));
  EXPECT_TRUE(IsAtOrBelow("/tmp/a", "/tmp"));
  EXPECT_FALSE(IsAtOrBelow("/tmpx", "/tmp"));
  EXPECT_FALSE(IsAtOrBelow("/tm", "/tmp"));
}

}  // namespace
