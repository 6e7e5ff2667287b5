// How the trace begins: each in a process of its own, because the environment is read once.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "temp_dir.h"
#include "trace_capture.h"
#include "zq_trace.h"

namespace {

using testing::ExitedWithCode;

constexpr char kStamp[] = "[0-9-]{10}T[0-9:.]{12} ";

// What a host does first.
[[noreturn]] void BeginAndSay(const char* destination, const char* level) {
  destination != nullptr ? setenv("ZQ_TRACE", destination, 1) : unsetenv("ZQ_TRACE");
  level != nullptr ? setenv("ZQ_TRACE_LEVEL", level, 1) : unsetenv("ZQ_TRACE_LEVEL");
  const int instance = zq_TraceCreate("host", __FILE__, __LINE__);
  zq_Trace(instance, 10000, 1, true, "usual");
  zq_Trace(instance, 30000, 1, true, "grave");
  _exit(0);
}

TEST(TraceStartDeathTest, GoesToStderrWhenTheEnvironmentSaysSo) {
  EXPECT_EXIT(BeginAndSay("stderr", nullptr), ExitedWithCode(0),
              std::string("^") + kStamp + "10000 host usual\n" + kStamp + "30000 host grave\n$");
}

TEST(TraceStartDeathTest, CutsAtTheLevelOfTheEnvironment) {
  EXPECT_EXIT(BeginAndSay("stderr", "10001"), ExitedWithCode(0),
              std::string("^") + kStamp + "30000 host grave\n$");
}

TEST(TraceStartDeathTest, SaysThatALevelIsNoNumberAndCutsNothing) {
  EXPECT_EXIT(BeginAndSay("stderr", "high"), ExitedWithCode(0),
              std::string("^") + kStamp + "30000 zqos ZQ_TRACE_LEVEL is no number and is ignored: high\n" +
                  kStamp + "10000 host usual\n" + kStamp + "30000 host grave\n$");
}

TEST(TraceStartDeathTest, FallsBackToStderrOnceWithTheReason) {
  EXPECT_EXIT(
      BeginAndSay("/nowhere/trace", nullptr), ExitedWithCode(0),
      std::string("^") + kStamp +
          "30000 zqos trace to stderr, because /nowhere/trace cannot be opened: No such file or directory\n" +
          kStamp + "10000 host usual\n" + kStamp + "30000 host grave\n$");
}

TEST(TraceStartDeathTest, IsSilentWhenOff) {
  EXPECT_EXIT(BeginAndSay("off", nullptr), ExitedWithCode(0), "^$");
}

TEST(TraceStartDeathTest, GoesToSyslogByDefaultWhichIsNotStderr) {
  EXPECT_EXIT(BeginAndSay(nullptr, nullptr), ExitedWithCode(0), "^$");
  EXPECT_EXIT(BeginAndSay("", nullptr), ExitedWithCode(0), "^$");
}

TEST(TraceStartDeathTest, GoesToAFileOfTheEnvironmentWhichIsMade) {
  const TempDir folder;
  const std::string path = folder / "trace";
  EXPECT_EXIT(BeginAndSay(path.c_str(), nullptr), ExitedWithCode(0), "^$");
  EXPECT_EQ(ParseTrace(ReadFile(path)).size(), 2U);
}

TEST(TraceStartDeathTest, RedirectionBeforeTheFirstLineMakesTheEnvironmentCountNoMore) {
  const TempDir folder;
  const std::string path = folder / "trace";
  EXPECT_EXIT(
      {
        setenv("ZQ_TRACE", path.c_str(), 1);
        zq_TraceRedirect("stderr", 0);
        zq_Trace(0, 10000, 1, true, "here");
        _exit(0);
      },
      ExitedWithCode(0), "10000 - here\n$");
  EXPECT_EQ(ReadFile(path), "");
}

TEST(TraceStartDeathTest, ANewCutBeforeTheFirstLineKeepsTheDestinationOfTheEnvironment) {
  EXPECT_EXIT(
      {
        setenv("ZQ_TRACE", "stderr", 1);
        zq_TraceRedirect(nullptr, 20000);
        zq_Trace(0, 10000, 1, true, "cut");
        zq_Trace(0, 20000, 1, true, "here");
        _exit(0);
      },
      ExitedWithCode(0), std::string("^") + kStamp + "20000 - here\n$");
}

TEST(TraceStartDeathTest, ThreadsThatTraceFirstAtTheSameMomentAllGetThrough) {
  const TempDir folder;
  const std::string path = folder / "trace";
  EXPECT_EXIT(
      {
        setenv("ZQ_TRACE", path.c_str(), 1);
        std::vector<std::thread> threads;
        for (int i = 0; i < 8; ++i) threads.emplace_back([] { zq_Trace(0, 10000, 1, true, "first"); });
        for (std::thread& thread : threads) thread.join();
        _exit(0);
      },
      ExitedWithCode(0), "^$");
  EXPECT_EQ(ParseTrace(ReadFile(path)).size(), 8U);
}

TEST(TraceEndDeathTest, ACrashLosesNoLine) {
  const TempDir folder;
  const std::string path = folder / "trace";
  EXPECT_EXIT(
      {
        zq_TraceRedirect(path.c_str(), 0);
        zq_Trace(0, 10000, 1, false, "last words");
        raise(SIGKILL);
      },
      testing::KilledBySignal(SIGKILL), "");
  ASSERT_EQ(ParseTrace(ReadFile(path)).size(), 1U);
  EXPECT_EQ(ParseTrace(ReadFile(path))[0].text, "last words");
}

struct TracesAtItsEnd {
  ~TracesAtItsEnd() { zq_Trace(0, 10000, 1, true, "from a static destructor"); }
};

TEST(TraceEndDeathTest, CanBeUsedUntilTheProcessIsGone) {
  EXPECT_EXIT(
      {
        static const TracesAtItsEnd late;
        std::atexit([] { zq_Trace(0, 10000, 1, true, "from an exit handler"); });
        zq_TraceRedirect("stderr", 0);
        exit(0);
      },
      ExitedWithCode(0), "from an exit handler\n.*from a static destructor\n");
}

[[noreturn]] void TearALine(const std::string& path) {
  signal(SIGXFSZ, SIG_IGN);
  zq_TraceRedirect(path.c_str(), 0);
  rlimit room{100, RLIM_INFINITY};
  setrlimit(RLIMIT_FSIZE, &room);
  zq_Trace(0, 10000, 1, true, "%0200d", 0);
  zq_Trace(0, 10000, 1, true, "no byte of this");
  room.rlim_cur = RLIM_INFINITY;
  setrlimit(RLIMIT_FSIZE, &room);
  zq_Trace(0, 10000, 1, true, "whole again");
  _exit(0);
}

// A disk that is full for one line takes half of it; the next one that fits begins on a line of its own.
TEST(TraceEndDeathTest, ATornLineDoesNotSpoilTheNext) {
  const TempDir folder;
  const std::string path = folder / "trace";
  EXPECT_EXIT(TearALine(path), ExitedWithCode(0), "");
  const std::string bytes = ReadFile(path);
  EXPECT_THAT(bytes, testing::HasSubstr("0000\n2"));
  EXPECT_THAT(bytes, testing::EndsWith(" 10000 - whole again\n"));
  EXPECT_EQ(std::count(bytes.begin(), bytes.end(), '\n'), 2);
}

}  // namespace
