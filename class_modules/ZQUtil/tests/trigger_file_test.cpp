// The files by which the module asks the system's scripts to act.
#include <gtest/gtest.h>

#include "TriggerFile.h"
#include "ZQUtilTrace.h"
#include "temp_dir.h"
#include "trace_capture.h"

std::atomic<int> ZQUtilTraceInstance = 0;

namespace {

class TriggerFileTest : public testing::Test {
 protected:
  std::string Traces() const {
    std::string all;
    for (const std::string& text : trace.Texts()) all += text + "\n";
    return all;
  }

  TempDir folder;
  const std::string path = folder / "do_it";
  const TraceCapture trace;
};

TEST_F(TriggerFileTest, ARequestIsAFileWithTheCharacterOne) {
  RaiseTrigger(path.c_str());
  EXPECT_EQ(ReadFile(path), "1");
  EXPECT_EQ(Traces(),
            "ZQUtil creating " + path + "\nZQUtil created " + path + "\nZQUtil done " + path + "\n");
}

TEST_F(TriggerFileTest, ARequestThatNobodyTookYetIsMadeAgain) {
  WriteFile(path, "something longer");
  RaiseTrigger(path.c_str());
  EXPECT_EQ(ReadFile(path), "1");
}

TEST_F(TriggerFileTest, ARequestThatCannotBeMadeIsSilentAboutIt) {
  const std::string nowhere = folder / "missing/do_it";
  RaiseTrigger(nowhere.c_str());
  EXPECT_EQ(Traces(), "ZQUtil creating " + nowhere + "\nZQUtil done " + nowhere + "\n");
}

TEST_F(TriggerFileTest, TheFileAloneTracesOnlyThatItIsThere) {
  EXPECT_TRUE(CreateTriggerFile(path.c_str()));
  EXPECT_EQ(ReadFile(path), "1");
  EXPECT_FALSE(CreateTriggerFile((folder / "missing/do_it").c_str()));
  EXPECT_EQ(Traces(), "ZQUtil created " + path + "\n");
}

}  // namespace
