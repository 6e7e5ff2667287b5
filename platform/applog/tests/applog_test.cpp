#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "environment_setting.h"
#include "fault.h"
#include "manual_clock.h"
#include "temp_dir.h"
#include "trace_capture.h"
#include "zq_thread.h"
#include "zqapplog.h"

namespace {

std::atomic<int> g_started = 0;
std::atomic<bool> g_noMore = false;

}  // namespace

// In place of the platform's, which it passes on to: counts the threads that are started, or starts none.
extern "C" __attribute__((visibility("default"))) uint32_t zq__beginthread(
    zq_ThreadFunction function, void* argument, const zq_ThreadAttributes* attributes, const char* file,
    int line) {
  static const auto next = reinterpret_cast<decltype(&zq__beginthread)>(dlsym(RTLD_NEXT, "zq__beginthread"));
  if (g_noMore) return 0;
  ++g_started;
  return next(function, argument, attributes, file, line);
}

namespace {

constexpr char kStamp[] = "2026-11-21T09:00:00Z\t";

class ApplogTest : public testing::Test {
 protected:
  // What a session in which these were logged leaves in the file.
  template <typename Work>
  std::string Session(const Work& work) {
    EXPECT_EQ(ZQLogRegister(nullptr), 0);
    work();
    ZQLogUnregister();
    return ReadFile(Path());
  }
  static int32_t Log(const std::string& text) {
    return ZQLogApplicationActivity("app", text.c_str(), nullptr);
  }
  std::string Path() const { return folder_ / "zqapplog.log"; }

  ManualClock clock_;
  TempDir folder_;

 private:
  EnvironmentSetting config_{"ZQ_CONFIG_DIR", folder_.Path().c_str()};
};

TEST_F(ApplogTest, ARecordIsALine) {
  const std::string lines = Session([this] {
    EXPECT_EQ(ZQLogApplicationActivity("Clock", "alarm set", "7:00"), 0);
    clock_.Advance(std::chrono::seconds(61));
    EXPECT_EQ(ZQLogApplicationActivity("Phone", "call", nullptr), 0);
    EXPECT_EQ(ZQLogApplicationActivity("", "", ""), 0);
  });
  EXPECT_EQ(lines,
            "2026-11-21T09:00:00Z\tClock\talarm set\t7:00\n"
            "2026-11-21T09:01:01Z\tPhone\tcall\t-\n"
            "2026-11-21T09:01:01Z\t\t\t\n");
}

TEST_F(ApplogTest, ASessionWithoutARecordStartsNoThread) {
  g_started = 0;
  EXPECT_EQ(Session([] {}), "");
  EXPECT_EQ(g_started, 0);
  Session([] { Log("one"); });
  EXPECT_EQ(g_started, 1);
  Session([] {
    Log("two");
    Log("three");
  });
  EXPECT_EQ(g_started, 2);
}

TEST_F(ApplogTest, ARecordThatNoThreadCanTakeIsCounted) {
  const std::string lines = Session([] {
    g_noMore = true;
    EXPECT_EQ(Log("lost"), -1);
    g_noMore = false;
    EXPECT_EQ(Log("kept"), 0);
  });
  EXPECT_EQ(lines, std::string(kStamp) + "-\trecords lost\t1\n" + kStamp + "app\tkept\t-\n");
}

TEST_F(ApplogTest, NoTextBreaksALine) {
  const std::string lines = Session([] {
    ZQLogApplicationActivity("a\tb\nc\rd\\e", "\x01\x1b\x7f", "-");
    ZQLogApplicationActivity("-", "--", "\xc3\xa4\xff");
  });
  EXPECT_EQ(lines, std::string(kStamp) + "a\\tb\\nc\\rd\\\\e\t\\x01\\x1b\\x7f\t\\x2d\n" + kStamp +
                       "\\x2d\t--\t\xc3\xa4\xff\n");
}

TEST_F(ApplogTest, LongTextsAreCutAtAWholeCharacter) {
  const std::string longText(1023, 'x');
  const std::string lines = Session([&] {
    ZQLogApplicationActivity((longText + "yz").c_str(), (longText + "\xc3\xa4z").c_str(),
                             (longText + "y").c_str());
  });
  EXPECT_EQ(lines, kStamp + longText + "y\t" + longText + "\t" + longText + "y\n");
}

TEST_F(ApplogTest, MissingTextsAreNoRecord) {
  const std::string lines = Session([] {
    EXPECT_EQ(ZQLogApplicationActivity(nullptr, "b", "c"), -1);
    EXPECT_EQ(ZQLogApplicationActivity("a", nullptr, "c"), -1);
  });
  EXPECT_EQ(lines, "");
}

TEST_F(ApplogTest, WithoutARegistrationNothingIsKept) {
  EXPECT_EQ(Log("too early"), -1);
  Session([] { Log("kept"); });
  EXPECT_EQ(Log("too late"), -1);
  ZQLogUnregister();
  EXPECT_EQ(ReadFile(Path()), std::string(kStamp) + "app\tkept\t-\n");
}

TEST_F(ApplogTest, RegistrationsAreCounted) {
  const std::string lines = Session([] {
    EXPECT_EQ(ZQLogRegister(nullptr), 0);
    ZQLogUnregister();
    EXPECT_EQ(Log("kept"), 0);
  });
  EXPECT_EQ(lines, std::string(kStamp) + "app\tkept\t-\n");
}

TEST_F(ApplogTest, SessionsAppend) {
  Session([] { Log("one"); });
  EXPECT_EQ(Session([] { Log("two"); }), std::string(kStamp) + "app\tone\t-\n" + kStamp + "app\ttwo\t-\n");
}

TEST_F(ApplogTest, ASlowDiskHoldsNobodyUpAndWhatIsLostIsCounted) {
  auto fault = std::make_unique<Fault>(folder_.Path(), "write:1:hold");
  const std::string lines = Session([&] {
    EXPECT_EQ(Log("first"), 0);
    while (fault->Calls("write") == 0) std::this_thread::yield();
    for (int i = 0; i < 1000; ++i) EXPECT_EQ(Log("waits"), 0);
    EXPECT_EQ(Log("lost"), -1);
    EXPECT_EQ(Log("lost"), -1);
    fault.reset();
  });
  std::string expected = std::string(kStamp) + "app\tfirst\t-\n" + kStamp + "-\trecords lost\t2\n";
  for (int i = 0; i < 1000; ++i) expected += std::string(kStamp) + "app\twaits\t-\n";
  EXPECT_EQ(lines, expected);
}

TEST_F(ApplogTest, AFullDiskIsTracedOnceAndWhatItLostIsCounted) {
  const TraceCapture trace;
  auto fault = std::make_unique<Fault>(folder_.Path(), "write:all:ENOSPC");
  ZQLogRegister(nullptr);
  for (long i = 1; i <= 3; ++i) {
    EXPECT_EQ(Log("lost"), 0);
    while (fault->Calls("write") < i) std::this_thread::yield();
  }
  ZQLogUnregister();
  fault.reset();
  EXPECT_EQ(trace.Texts(), std::vector<std::string>{"records are lost: No space left on device"});
  EXPECT_EQ(Session([] { Log("kept"); }),
            std::string(kStamp) + "-\trecords lost\t3\n" + kStamp + "app\tkept\t-\n");
}

TEST_F(ApplogTest, ADiskThatTakesItInPiecesLosesNothing) {
  const Fault fault(folder_.Path(), "write:1:short,write:2:EINTR");
  EXPECT_EQ(Session([] { Log("kept"); }), std::string(kStamp) + "app\tkept\t-\n");
  EXPECT_EQ(fault.Calls("write"), 3);
}

TEST_F(ApplogTest, ADiskThatFillsHalfWayLeavesNoHalfOfALine) {
  Session([] { Log("before"); });
  auto fault = std::make_unique<Fault>(folder_.Path(), "write:1:short,write:2:ENOSPC");
  const std::string before = std::string(kStamp) + "app\tbefore\t-\n";
  EXPECT_EQ(Session([] { Log("lost"); }), before);
  fault.reset();
  EXPECT_EQ(Session([] { Log("kept"); }),
            before + kStamp + "-\trecords lost\t1\n" + kStamp + "app\tkept\t-\n");
}

TEST_F(ApplogTest, AFileThatCannotBeWrittenIsTracedAndWhatItLostIsCounted) {
  const TraceCapture trace;
  auto fault = std::make_unique<Fault>(folder_.Path(), "open:all:EACCES");
  EXPECT_EQ(Session([] { Log("lost"); }), "");
  fault.reset();
  EXPECT_EQ(trace.Texts(), std::vector<std::string>{"records are lost: Permission denied"});
  EXPECT_EQ(Session([] { Log("kept"); }),
            std::string(kStamp) + "-\trecords lost\t1\n" + kStamp + "app\tkept\t-\n");
}

TEST_F(ApplogTest, AFullFileThatCannotMakeWayGrowsNoFurther) {
  const TraceCapture trace;
  const std::string full((1 << 20) - 10, 'x');
  WriteFile(Path(), full);
  auto fault = std::make_unique<Fault>(folder_.Path(), "rename:all:EROFS");
  EXPECT_EQ(Session([] { Log("lost"); }), full);
  fault.reset();
  EXPECT_EQ(trace.Texts(), std::vector<std::string>{"records are lost: Read-only file system"});
  EXPECT_EQ(Session([] { Log("kept"); }),
            std::string(kStamp) + "-\trecords lost\t1\n" + kStamp + "app\tkept\t-\n");
  EXPECT_EQ(ReadFile(Path() + ".1"), full);
}

TEST_F(ApplogTest, AFolderWhoseNameLeavesNoRoomForTheFileIsTraced) {
  const TraceCapture trace;
  {
    const EnvironmentSetting deep("ZQ_CONFIG_DIR", ("/" + std::string(5000, 'd')).c_str());
    Session([] { Log("lost"); });
  }
  EXPECT_EQ(trace.Texts(), std::vector<std::string>{"records are lost: File name too long"});
  EXPECT_EQ(Session([] { Log("kept"); }),
            std::string(kStamp) + "-\trecords lost\t1\n" + kStamp + "app\tkept\t-\n");
}

TEST_F(ApplogTest, AFileThatWouldGrowBeyondAMebibyteMakesWay) {
  const std::string full((1 << 20) - 10, 'x');
  WriteFile(Path(), full);
  WriteFile(Path() + ".1", "older");
  EXPECT_EQ(Session([] { Log("new"); }), std::string(kStamp) + "app\tnew\t-\n");
  EXPECT_EQ(ReadFile(Path() + ".1"), full);
}

TEST_F(ApplogTest, OthersMayNotReadTheFile) {
  Session([] { Log("private"); });
  struct stat status {};
  ASSERT_EQ(stat(Path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07, 0U);
}

TEST_F(ApplogTest, ManyThreadsLoseNothing) {
  Session([] {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([] {
        for (int j = 0; j < 100; ++j) EXPECT_EQ(Log("one of many"), 0);
      });
    }
    for (std::thread& thread : threads) thread.join();
  });
  const std::string line = std::string(kStamp) + "app\tone of many\t-\n";
  EXPECT_EQ(ReadFile(Path()).size(), 400 * line.size());
}

}  // namespace
