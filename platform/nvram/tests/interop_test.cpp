// The boot loader's tools and this library on one store.
#include "nvram_fixture.h"
#include "run_program.h"

namespace {

class NvramInteropTest : public NvramTest {
 protected:
  std::string Print() const { return RunProgram({"fw_printenv", "-c", config_}).output; }
  std::string Print(const std::string& key) const {
    return RunProgram({"fw_printenv", "-c", config_, "-n", key}).output;
  }
  int SetByTool(const std::string& key, const std::string& value) const {
    return RunProgram({"fw_setenv", "-c", config_, key, value}).status;
  }
};

TEST_F(NvramInteropTest, TheToolsReadWhatWasWritten) {
  Put("b", "two words");
  Put("a", "Grüße");
  Put("empty", "");
  EXPECT_EQ(Print(), "a=Grüße\nb=two words\nempty=\n");
  EXPECT_EQ(Print("a"), "Grüße\n");
}

TEST_F(NvramInteropTest, WhatTheToolsWroteIsReadAndTheReverseInTurns) {
  ASSERT_TRUE(CanOpen());
  for (int round = 0; round < 20; ++round) {
    EXPECT_EQ(SetByTool("tool", std::to_string(round)), 0);
    EXPECT_EQ(Value("tool"), std::to_string(round));
    EXPECT_EQ(Put("mine", std::to_string(round)), 0);
    EXPECT_EQ(Print(), "mine=" + std::to_string(round) + "\ntool=" + std::to_string(round) + "\n");
  }
}

TEST_F(NvramInteropTest, TypesAndPermissionsOfTheBootLoaderAreKeptAndHeeded) {
  ASSERT_TRUE(CanOpen());
  // "name" is a text that nobody may change.
  ASSERT_EQ(SetByTool("name", "fixed"), 0);
  ASSERT_EQ(SetByTool(".flags", "name:sr"), 0);
  EXPECT_EQ(Put("name", "other"), -1);
  EXPECT_EQ(Erase("name"), -1);
  EXPECT_EQ(Put("free", "1"), 0);
  EXPECT_EQ(Put("free", "2"), 0);
  EXPECT_EQ(Put("name", "other"), -1);
  EXPECT_EQ(Value("name"), "fixed");
}

TEST_F(NvramInteropTest, OneCopyIsReadByTheToolsToo) {
  Configure(first_ + " 0 0x1000\n");
  Put("a", "1");
  EXPECT_EQ(Print(), "a=1\n");
  EXPECT_EQ(SetByTool("b", "2"), 0);
  EXPECT_EQ(Value("b"), "2");
}

TEST_F(NvramInteropTest, CopiesAtOffsetsOfOneFileAreReadByTheToolsToo) {
  Configure(first_ + " 0x0 0x1000\n" + second_ + " 0x2000 0x1000\n");
  Put("a", "1");
  Put("a", "2");
  EXPECT_EQ(Print(), "a=2\n");
  EXPECT_EQ(std::filesystem::file_size(second_), 0x3000U);
}

}  // namespace
