// Every system call of a write fails once, or the process ends there: the file is the old one or the new one,
// whole.
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <map>
#include <vector>

#include "fault.h"
#include "ini_helpers.h"
#include "temp_dir.h"
#include "trace_capture.h"

namespace {

constexpr char kOld[] = "; settings\n[a]\nx=old\n\n[b]\ny=1\n";
constexpr char kNew[] = "; settings\n[a]\nx=new\n\n[b]\ny=1\n";
const std::vector<std::string> kCalls = {"open",      "close",     "read",   "write", "fsync",
                                         "fdatasync", "ftruncate", "rename", "link",  "unlink",
                                         "flock",     "fchmod",    "fchown"};

class IniFaultTest : public testing::TestWithParam<bool> {
 protected:
  IniFaultTest() { WriteFile(file_, kOld); }

  bool Write() const { return Set("a", "x", "new", file_, GetParam()); }
  // How often each call is made in a write that goes well.
  std::map<std::string, long> CallsOfAWrite() {
    std::map<std::string, long> calls;
    {
      const Fault count(folder_.Path(), "");
      EXPECT_TRUE(Write());
      for (const std::string& call : kCalls) calls[call] = count.Calls(call);
    }
    WriteFile(file_, kOld);
    return calls;
  }
  void ExpectNothingElseInTheFolder() const {
    EXPECT_EQ(NamesIn(folder_.Path()), std::set<std::string>{"settings.ini"});
  }

  TempDir folder_;
  std::string file_ = folder_ / "settings.ini";
};

INSTANTIATE_TEST_SUITE_P(, IniFaultTest, testing::Bool(),
                         [](const auto& suite) { return suite.param ? "Durable" : "Quick"; });

TEST_P(IniFaultTest, KeepsTheOldFileWhenACallOnTheWayFails) {
  std::map<std::string, long> calls = CallsOfAWrite();
  // The lock, the old file and the temporary; at the end the lock, whose closing comes after the fact.
  EXPECT_EQ(calls["open"], 3);
  EXPECT_EQ(calls["close"], 3);
  calls["close"] = 2;
  EXPECT_EQ(calls["fsync"], GetParam() ? 2 : 0);
  EXPECT_EQ(calls["rename"], 1);
  EXPECT_GE(calls["write"], 1);
  EXPECT_EQ(calls["fchmod"], 1);
  // What no one needs to succeed: to give away the file, to keep a second name, and to clean up.
  for (const char* call : {"fchown", "link", "unlink"}) calls.erase(call);
  calls["flock"] = 1;

  for (const auto& [call, count] : calls) {
    for (long number = 1; number <= count; ++number) {
      for (const char* error : {"ENOSPC", "EIO"}) {
        const std::string plan = call + ':' + std::to_string(number) + ':' + error;
        SCOPED_TRACE(plan);
        const TraceCapture trace;
        {
          const Fault fault(folder_.Path(), plan);
          EXPECT_FALSE(Write());
        }
        EXPECT_EQ(ReadFile(file_), kOld);
        ExpectNothingElseInTheFolder();
        ASSERT_EQ(trace.Texts().size(), 1U);
        EXPECT_TRUE(trace.Texts()[0].ends_with(std::string(error) == "EIO" ? "Input/output error"
                                                                           : "No space left on device"))
            << trace.Texts()[0];
      }
    }
  }
}

TEST_P(IniFaultTest, LeavesNoFileWhereNoneWasWhenACallFails) {
  for (const char* call : {"open:1", "write:1", "close:1", "rename:1", "fsync:1", "fsync:2"}) {
    if (!GetParam() && std::string(call).starts_with("fsync")) continue;
    SCOPED_TRACE(call);
    std::filesystem::remove(file_);
    {
      const Fault fault(folder_.Path(), std::string(call) + ":ENOSPC");
      EXPECT_FALSE(Write());
    }
    EXPECT_TRUE(NamesIn(folder_.Path()).empty());
  }
}

TEST_P(IniFaultTest, SucceedsWithoutWhatIsNotNeeded) {
  for (const char* plan :
       {"fchown:1:EPERM,fchown:2:EPERM", "link:1:EPERM", "unlink:all:EIO", "close:3:EIO"}) {
    SCOPED_TRACE(plan);
    WriteFile(file_, kOld);
    {
      const Fault fault(folder_.Path(), plan);
      EXPECT_TRUE(Write());
    }
    EXPECT_EQ(ReadFile(file_), kNew);
    ASSERT_TRUE(Set("b", "y", "1", file_));
    ExpectNothingElseInTheFolder();
  }
}

TEST_P(IniFaultTest, GoesOnAfterInterruptedAndShortCalls) {
  for (const char* plan : {"write:all:short,read:all:short", "write:1:EINTR,read:1:EINTR,flock:1:EINTR"}) {
    SCOPED_TRACE(plan);
    WriteFile(file_, kOld);
    {
      const Fault fault(folder_.Path(), plan);
      EXPECT_TRUE(Write());
    }
    EXPECT_EQ(ReadFile(file_), kNew);
    ExpectNothingElseInTheFolder();
  }
}

TEST_P(IniFaultTest, AWriterThatEndsAtAnyCallLeavesTheOldOrTheNewFile) {
  for (const auto& [call, count] : CallsOfAWrite()) {
    for (long number = 1; number <= count; ++number) {
      for (const char* effect : {"kill", "then-kill"}) {
        const std::string plan = call + ':' + std::to_string(number) + ':' + effect;
        SCOPED_TRACE(plan);
        WriteFile(file_, kOld);
        const pid_t child = InChild([&] {
          const Fault fault(folder_.Path(), plan);
          Write();
          return 0;
        });
        EXPECT_EQ(AwaitChild(child), -SIGKILL);
        const std::string left = ReadFile(file_);
        EXPECT_TRUE(left == kOld || left == kNew) << left;
        // The next writer finds the lock free and cleans up.
        EXPECT_TRUE(Set("b", "y", "2", file_));
        EXPECT_EQ(Value("b", "y", file_), "2");
        ExpectNothingElseInTheFolder();
      }
    }
  }
}

TEST_P(IniFaultTest, AReadThatFailsGivesTheFallbackNotHalfAValue) {
  for (const char* plan : {"open:1:EIO", "read:1:EIO", "read:1:short,read:2:EIO"}) {
    SCOPED_TRACE(plan);
    const Fault fault(folder_.Path(), plan);
    EXPECT_EQ(Value("a", "x", file_), "(missing)");
  }
}

class IniDurabilityTest : public IniFaultTest {};

INSTANTIATE_TEST_SUITE_P(, IniDurabilityTest, testing::Values(true), [](const auto&) { return "Durable"; });

TEST_P(IniDurabilityTest, TheContentsAreOnTheDiskBeforeTheNameChangesAndTheNameBeforeTheReturn) {
  const Fault fault(folder_.Path(), "rename:1:EIO");
  EXPECT_FALSE(Write());
  EXPECT_EQ(fault.Calls("fsync"), 1);
  EXPECT_TRUE(Write());
  EXPECT_EQ(fault.Calls("fsync"), 3);
}

TEST_P(IniDurabilityTest, AValueThatIsThereFromAQuickWriteIsBroughtToTheDisk) {
  ASSERT_TRUE(Set("a", "x", "new", file_, false));
  for (const char* plan : {"fsync:1:EIO", "fsync:2:EIO"}) {
    const Fault fault(folder_.Path(), plan);
    EXPECT_FALSE(Write());
  }
  const Fault fault(folder_.Path(), "");
  EXPECT_TRUE(Write());
  EXPECT_EQ(fault.Calls("fsync"), 2);
  EXPECT_EQ(fault.Calls("write"), 0);
}

TEST_P(IniDurabilityTest, AFileThatIsOnTheDiskIsBroughtThereAgainOnlyAfterAChange) {
  ASSERT_TRUE(Set("a", "x", "new", file_, false));
  const auto syncs = [this](const char* section, const char* key, const char* value) {
    const Fault fault(folder_.Path(), "");
    EXPECT_TRUE(Set(section, key, value, file_, true));
    return fault.Calls("fsync");
  };
  EXPECT_EQ(syncs("a", "x", "new"), 2);
  EXPECT_EQ(syncs("a", "x", "new"), 0);
  EXPECT_EQ(syncs("b", "y", "1"), 0) << "the same file";
  ASSERT_TRUE(Set("b", "y", "2", file_, false));
  EXPECT_EQ(syncs("a", "x", "new"), 2) << "after a quick write";
  EXPECT_EQ(syncs("b", "y", "3"), 2) << "of a new value";
  // Another program writes the same bytes anew.
  const std::string bytes = ReadFile(file_);
  std::filesystem::remove(file_);
  AwaitFileTick();
  WriteFile(file_, bytes);
  EXPECT_EQ(syncs("b", "y", "3"), 2);
}

}  // namespace
