// The name servers out of the resolver's file.
#include <gtest/gtest.h>

#include <initializer_list>

#include "ResolverFile.h"

namespace {

// The three servers of the lines, "[a] [b] [c]".
std::string Servers(std::initializer_list<std::string> lines) {
  ResolverFile file;
  for (const std::string& line : lines) file.AddLine(line);
  return "[" + file.First() + "] [" + file.Second() + "] [" + file.Third() + "]";
}

std::string Server(const std::string& line) {
  ResolverFile file;
  file.AddLine(line);
  return file.First();
}

TEST(ResolverFileTest, TheThirdIsTheLastOfThoseThatFollowTheSecond) {
  EXPECT_EQ(Servers({}), "[] [] []");
  EXPECT_EQ(Servers({"nameserver 1\n"}), "[1] [] []");
  EXPECT_EQ(Servers({"nameserver 1\n", "nameserver 2\n"}), "[1] [2] []");
  EXPECT_EQ(Servers({"nameserver 1\n", "nameserver 2\n", "nameserver 3\n"}), "[1] [2] [3]");
  EXPECT_EQ(Servers({"nameserver 1\n", "nameserver 2\n", "nameserver 3\n", "nameserver 4\n"}), "[1] [2] [4]");
}

TEST(ResolverFileTest, OtherLinesAreIgnored) {
  EXPECT_EQ(Servers({"# nameserver 9\n", "  # nameserver 9\n", "\n", "   \n", "search nameserver\n",
                     "; nameserver 9\n", "nameservr 9\n", "nameserver", "nameserver\n", "nameserver \t \r\n",
                     "options timeout:1\n", "nameserver 1\n"}),
            "[1] [] []");
}

TEST(ResolverFileTest, WhiteSpaceAndCaseOfTheKeywordDoNotCount) {
  EXPECT_EQ(Server("  NameServer\t8.8.8.8 \r\n"), "8.8.8.8");
  EXPECT_EQ(Server("\t\v\f NAMESERVER \t \t8.8.8.8"), "8.8.8.8") << "a last line without its break";
  EXPECT_EQ(Server("nameserver8.8.8.8\n"), "8.8.8.8");
  EXPECT_EQ(Server("nameserver# 1\n"), "# 1");
}

TEST(ResolverFileTest, AServerIsAllThatFollowsToTheEndOfTheLine) {
  EXPECT_EQ(Server("nameserver 1.1.1.1 # home\n"), "1.1.1.1 # home");
  EXPECT_EQ(Server("nameserver fe80::1%eth0\n"), "fe80::1%eth0");
  EXPECT_EQ(Server("nameserver 2001:db8::1\n"), "2001:db8::1");
}

TEST(ResolverFileTest, SpacesAndLineBreaksAtItsEndGoAndTabsStay) {
  EXPECT_EQ(Server("nameserver 1.1.1.1 \r \r\n\n"), "1.1.1.1");
  EXPECT_EQ(Server("nameserver 1.1.1.1\t\r\n"), "1.1.1.1\t");
  EXPECT_EQ(Server("nameserver 1.1.1.1 \t \n"), "1.1.1.1 \t");
}

TEST(ResolverFileTest, ServersOfAnyLengthAreKept) {
  const std::string server(100000, 's');
  EXPECT_EQ(Server("nameserver " + server), server);
}

}  // namespace
