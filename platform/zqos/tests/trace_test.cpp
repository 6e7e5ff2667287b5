#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "temp_dir.h"
#include "trace_capture.h"
#include "zq_trace.h"

namespace {

using testing::ElementsAre;

class Instance {
 public:
  explicit Instance(const char* name) : number_(zq_TraceCreate(name, __FILE__, __LINE__)) {}
  Instance(const Instance&) = delete;
  Instance& operator=(const Instance&) = delete;
  ~Instance() { zq_TraceRelease(number_); }
  int Number() const { return number_; }

 private:
  int number_;
};

void Say(int instance, const char* text, int level = ZQ_TRACE_NORMAL) {
  zq_Trace(instance, level, 1, true, "%s", text);
}

TEST(Trace, ALineIsStampLevelNameAndText) {
  const TraceCapture trace;
  const Instance zqutil("zqutil");
  zq_Trace(zqutil.Number(), 10000, 1, true, "ZQUtil %s", "MM_Init");
  EXPECT_THAT(trace.Raw(),
              testing::MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} "
                                    "10000 zqutil ZQUtil MM_Init\n"));
}

TEST(Trace, DropsOneLineEndAndKeepsTheTextAsItStands) {
  const TraceCapture trace;
  Say(0, "plain");
  Say(0, "one end\n");
  Say(0, "two ends\n\n");
  Say(0, "");
  Say(0, "  100%d {} \t\xFF\xC3 ");
  Say(0, "two\nlines");
  EXPECT_THAT(trace.Texts(),
              ElementsAre("plain", "one end", "two ends\n", "", "  100%d {} \t\xFF\xC3 ", "two\nlines"));
}

TEST(Trace, LongTextsComeWhole) {
  const TraceCapture trace;
  std::vector<std::string> expected;
  // Around the room of the stack buffer, and far beyond it.
  for (const size_t length : {480U, 495U, 496U, 497U, 498U, 499U, 500U, 511U, 512U, 513U, 100'000U}) {
    expected.emplace_back(length, 'x');
    Say(0, expected.back().c_str());
  }
  EXPECT_EQ(trace.Texts(), expected);
}

TEST(Trace, ANullFormatIsNoLine) {
  const TraceCapture trace;
  void (*const trace_unchecked)(int, int, int, bool, const char*, ...) = &zq_Trace;
  trace_unchecked(0, 10000, 1, true, nullptr);
  EXPECT_EQ(trace.Raw(), "");
}

TEST(Trace, TheErrorNumberIsThereForTheTextAndStaysForTheCaller) {
  const TraceCapture trace;
  errno = ENOSPC;
  zq_Trace(0, 10000, 1, true, "%m");
  EXPECT_EQ(errno, ENOSPC);
  zq_Trace(0, 10000, 1, true, "%600s|%m", "");
  EXPECT_EQ(errno, ENOSPC);
  EXPECT_EQ(trace.Texts()[0], "No space left on device");
  EXPECT_EQ(trace.Texts()[1], std::string(600, ' ') + "|No space left on device");
}

TEST(Trace, LinesBelowTheCutGoNowhere) {
  const TraceCapture trace(20000);
  Say(0, "low", 19999);
  Say(0, "even", 20000);
  Say(0, "grave", ZQ_TRACE_FAILURE);
  Say(0, "negative", -1);
  EXPECT_THAT(trace.Texts(), ElementsAre("even", "grave"));
}

TEST(Trace, AnyLevelPassesTheLowestCutAndNoneAnOffTrace) {
  const TraceCapture trace(INT_MIN);
  Say(0, "highest", INT_MAX);
  Say(0, "low", INT_MIN + 1);
  EXPECT_EQ(trace.Lines().size(), 2U);
  ASSERT_TRUE(zq_TraceRedirect("off", 0));
  Say(0, "lost", INT_MAX);
  EXPECT_EQ(trace.Lines().size(), 2U);
}

TEST(TraceInstance, OfZeroAndReleasedOnesShowsAsADash) {
  const TraceCapture trace;
  const int released = zq_TraceCreate("released", __FILE__, __LINE__);
  Say(released, "alive");
  zq_TraceRelease(released);
  Say(released, "gone");
  Say(0, "none");
  Say(-3, "negative");
  Say(INT_MAX, "never was");
  std::vector<std::string> names;
  for (const TraceLine& line : trace.Lines()) names.push_back(line.name);
  EXPECT_THAT(names, ElementsAre("released", "-", "-", "-", "-"));
}

TEST(TraceInstance, ThatIsReleasedIsNotTakenForTheOneInItsPlace) {
  const TraceCapture trace;
  const int first = zq_TraceCreate("first", __FILE__, __LINE__);
  zq_TraceRelease(first);
  const Instance second("second");
  zq_TraceRelease(first);  // again: not the second's
  Say(first, "stale");
  Say(second.Number(), "current");
  EXPECT_NE(first, second.Number());
  EXPECT_EQ(trace.Lines()[0].name, "-");
  EXPECT_EQ(trace.Lines()[1].name, "second");
}

TEST(TraceInstance, NamesAreCopiedAndOddOnesHaveADefinedForm) {
  const TraceCapture trace;
  std::string name = "mine";
  const Instance copied(name.c_str());
  name = "else";
  Say(copied.Number(), "x");
  Say(Instance(nullptr).Number(), "x");
  Say(Instance("").Number(), "x");
  Say(Instance(std::string(500, 'n').c_str()).Number(), "x");
  std::vector<std::string> names;
  for (const TraceLine& line : trace.Lines()) names.push_back(line.name);
  EXPECT_THAT(names, ElementsAre("mine", "-", "-", std::string(63, 'n')));
}

TEST(TraceInstance, IsZeroWhenAllAreInUseAndTheTraceSaysWhoAsked) {
  const TraceCapture trace;
  std::vector<int> taken;
  int instance = 0;
  while ((instance = zq_TraceCreate("one", "asker.cpp", 5)) != 0 && taken.size() < 1000)
    taken.push_back(instance);
  EXPECT_GE(taken.size(), 60U);
  EXPECT_LT(taken.size(), 1000U);
  EXPECT_THAT(trace.Texts(), ElementsAre("no trace instance left for one (asker.cpp:5)"));
  zq_TraceRelease(taken.back());
  taken.back() = zq_TraceCreate("again", __FILE__, __LINE__);
  EXPECT_GT(taken.back(), 0);
  for (const int one : taken) zq_TraceRelease(one);
}

TEST(Trace, LinesOfManyThreadsComeWholeAndEachThreadsInItsOrder) {
  constexpr int kThreads = 8;
  constexpr int kLines = 500;
  const TraceCapture trace;
  const std::string padding(700, '.');
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([thread, &padding] {
      const Instance own(("thread" + std::to_string(thread)).c_str());
      for (int i = 0; i < kLines; ++i)
        zq_Trace(own.Number(), 10000 + thread, 1, false, "%d%s|", i, padding.c_str());
    });
  }
  for (std::thread& thread : threads) thread.join();

  std::vector<int> next(kThreads, 0);
  for (const TraceLine& line : trace.Lines()) {
    const auto thread = static_cast<size_t>(line.level - 10000);
    ASSERT_LT(thread, next.size());
    ASSERT_EQ(line.name, "thread" + std::to_string(thread));
    ASSERT_EQ(line.text, std::to_string(next[thread]++) + padding + "|");
  }
  EXPECT_EQ(next, std::vector<int>(kThreads, kLines));
}

TEST(Trace, RedirectionsWhileOthersTraceLoseNoLine) {
  constexpr int kLines = 2000;
  const TempDir folder;
  const std::string paths[] = {folder / "a", folder / "b"};
  ASSERT_TRUE(zq_TraceRedirect(paths[0].c_str(), 0));
  std::thread tracer([] {
    for (int i = 0; i < kLines; ++i) zq_Trace(0, 10000, 1, false, "%d", i);
  });
  for (int i = 0; i < 50; ++i) ASSERT_TRUE(zq_TraceRedirect(paths[i % 2].c_str(), 0));
  tracer.join();
  ASSERT_TRUE(zq_TraceRedirect("off", 0));
  std::vector<int> seen;
  for (const std::string& path : paths) {
    for (const TraceLine& line : ParseTrace(ReadFile(path))) seen.push_back(std::stoi(line.text));
  }
  std::sort(seen.begin(), seen.end());
  ASSERT_EQ(seen.size(), static_cast<size_t>(kLines));
  for (int i = 0; i < kLines; ++i) ASSERT_EQ(seen[static_cast<size_t>(i)], i);
}

TEST(TraceFile, IsOpenedAnewSoThatARotatedOneCanBeLetGo) {
  const TraceCapture trace;
  Say(0, "before");
  const std::string rotated = trace.Path() + ".1";
  std::filesystem::rename(trace.Path(), rotated);
  Say(0, "still in the old one");
  ASSERT_TRUE(zq_TraceRedirect(nullptr, 0));
  Say(0, "after");
  EXPECT_EQ(ParseTrace(ReadFile(rotated)).size(), 2U);
  EXPECT_THAT(trace.Texts(), ElementsAre("after"));
}

TEST(TraceFile, IsAppendedTo) {
  const TraceCapture trace;
  Say(0, "first");
  ASSERT_TRUE(zq_TraceRedirect(trace.Path().c_str(), 0));
  Say(0, "second");
  EXPECT_THAT(trace.Texts(), ElementsAre("first", "second"));
}

TEST(TraceFile, OfARelativePathStaysWhereItWasWhenTheWorkingFolderChanges) {
  const TempDir folder;
  const TempDir elsewhere;
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  EXPECT_TRUE(zq_TraceRedirect("relative", 0));
  Say(0, "one");
  std::filesystem::current_path(elsewhere.Path());
  EXPECT_TRUE(zq_TraceRedirect(nullptr, 0));
  Say(0, "two");
  std::filesystem::current_path(before);
  zq_TraceRedirect("off", 0);
  EXPECT_EQ(ParseTrace(ReadFile(folder / "relative")).size(), 2U);
  EXPECT_TRUE(std::filesystem::is_empty(elsewhere.Path()));
}

TEST(TraceFile, ThatCannotBeOpenedChangesNothing) {
  const TraceCapture trace(20000);
  EXPECT_FALSE(zq_TraceRedirect("/nowhere/at/all/trace", 0));
  EXPECT_FALSE(zq_TraceRedirect("/", 0));
  EXPECT_FALSE(zq_TraceRedirect("", 0));
  Say(0, "cut as before", 10000);
  Say(0, "kept", 20000);
  EXPECT_THAT(trace.Texts(), ElementsAre("kept"));
}

TEST(TraceFile, OnAFullDiskLosesLinesAndNothingElse) {
  const TraceCapture trace;
  ASSERT_TRUE(zq_TraceRedirect("/dev/full", 0));
  errno = 0;
  Say(0, "lost");
  EXPECT_EQ(errno, 0);
  ASSERT_TRUE(zq_TraceRedirect(trace.Path().c_str(), 0));
  Say(0, "kept");
  EXPECT_THAT(trace.Texts(), ElementsAre("kept"));
}

TEST(TraceFile, ThatIsAPipeNobodyReadsHoldsNobodyUp) {
  const TempDir folder;
  const std::string pipe = folder / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_FALSE(zq_TraceRedirect(pipe.c_str(), 0));
  const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  EXPECT_TRUE(zq_TraceRedirect(pipe.c_str(), 0));
  Say(0, "read me");
  char bytes[100] = "";
  EXPECT_GT(read(reader, bytes, sizeof bytes - 1), 0);
  EXPECT_THAT(bytes, testing::EndsWith("10000 - read me\n"));
  zq_TraceRedirect("off", 0);
  close(reader);
}

TEST(TraceFile, DescriptorIsNotInheritedByChildren) {
  const TraceCapture trace;
  int found = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    if (std::filesystem::read_symlink(entry.path(), gone) != std::filesystem::canonical(trace.Path()))
      continue;
    ++found;
    EXPECT_NE(fcntl(std::stoi(entry.path().filename().string()), F_GETFD) & FD_CLOEXEC, 0);
  }
  EXPECT_EQ(found, 1);
}

}  // namespace
