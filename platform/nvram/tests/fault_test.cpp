// Disks that refuse: each call of a write, a making and a mending fails once, in turn.
#include "fault.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "nvram_fixture.h"
#include "trace_capture.h"

namespace {

constexpr const char* kCalls[] = {"open",   "read",   "write", "fsync", "close",
                                  "rename", "unlink", "flock", "fchmod"};
constexpr const char* kErrors[] = {"EIO", "ENOSPC", "short"};
class NvramFaultTest : public NvramTest {
 protected:
  // Where the device's folder is on the machine.
  static std::string Place(const std::string& folder) { return std::getenv("ZQ_DEVICE") + folder; }
  std::string Folder() const { return Place(folder_.Path().string()); }
  // Runs the act with one call failing once, then the check, for each call that the act makes.
  template <typename Act, typename Check>
  void FailEachCall(Act act, Check check) {
    for (const char* call : kCalls) {
      for (const char* error : kErrors) {
        for (long which = 1, made = which; which <= made && !HasFatalFailure(); ++which) {
          const std::string plan = std::string(call) + ":" + std::to_string(which) + ":" + error;
          {
            const Fault fault(Folder(), plan);
            act(plan);
            made = fault.Calls(call);
          }
          check(plan);
        }
      }
    }
  }
  void Fill() {
    Put("kept", "yes");
    Put("key", "old");
  }
};

TEST_F(NvramFaultTest, AWriteThatFailsKeepsTheOldValueAndOneThatSucceedsTheNew) {
  Fill();
  std::string value = "old";
  int failures = 0;
  FailEachCall(
      [&](const std::string& plan) {
        if (Put("key", "after " + plan) == 0)
          value = "after " + plan;
        else
          ++failures;
      },
      [&](const std::string& plan) {
        ASSERT_EQ(Value("key"), value) << plan;
        ASSERT_EQ(Value("kept"), "yes") << plan;
      });
  EXPECT_GT(failures, 10);
}

TEST_F(NvramFaultTest, AFailedWriteIsUndoneForTheOpenHandleToo) {
  Fill();
  const int handle = nvram_open(0, 0);
  char buffer[8];
  {
    const Fault fault(Folder(), "fsync:1:EIO");
    EXPECT_EQ(nvram_write_key(handle, nullptr, "key", "new"), -1);
  }
  EXPECT_EQ(nvram_read_key(handle, nullptr, "key", buffer, sizeof buffer), 0);
  EXPECT_STREQ(buffer, "old");
  EXPECT_EQ(nvram_write_key(handle, nullptr, "key", "newer"), 0);
  EXPECT_EQ(nvram_close(handle), 0);
  EXPECT_EQ(Value("key"), "newer");
}

TEST_F(NvramFaultTest, ADiskThatStaysFullKeepsTheOldValue) {
  Fill();
  for (const char* plan :
       {"write:all:ENOSPC", "fsync:all:EIO", "write:1:short,write:2:ENOSPC,write:3:ENOSPC"}) {
    {
      const Fault fault(Folder(), plan);
      EXPECT_EQ(Put("key", "new"), -1) << plan;
    }
    EXPECT_EQ(Value("key"), "old") << plan;
    EXPECT_EQ(Value("kept"), "yes") << plan;
  }
}

TEST_F(NvramFaultTest, AWriteThatNeverSyncsIsNotCalledDone) {
  Fill();
  const TraceCapture trace;
  const Fault fault(Folder(), "fsync:all:EIO");
  EXPECT_EQ(Put("key", "new"), -1);
  EXPECT_TRUE(trace.Texts().back().starts_with("nvram: cannot write key: cannot write "));
}

TEST_F(NvramFaultTest, AWriteIsSyncedBeforeItIsCalledDoneAndTheOtherCopyBeforeItIsOverwritten) {
  Fill();
  const int handle = nvram_open(0, 0);
  const Fault fault(Folder(), "");
  // The copy that counts was put on the disk by this process: one flush.
  EXPECT_EQ(nvram_write_key(handle, nullptr, "key", "new"), 0);
  EXPECT_EQ(fault.Calls("write"), 2);  // texts, header
  EXPECT_EQ(fault.Calls("fsync"), 1);
  nvram_close(handle);
}

TEST_F(NvramFaultTest, ReadingOpensOneWayOrFailsWhole) {
  Fill();
  std::string value;
  FailEachCall([&](const std::string&) { value = Value("key"); },
               [&](const std::string& plan) {
                 EXPECT_TRUE(value == "old" || value == "(closed)") << plan << ": " << value;
                 ASSERT_EQ(Value("key"), "old") << plan;
               });
}

TEST_F(NvramFaultTest, AMakingThatFailsIsDoneByTheNextOpening) {
  FailEachCall([&](const std::string&) { CanOpen(); },
               [&](const std::string& plan) {
                 ASSERT_TRUE(CanOpen()) << plan;
                 ASSERT_FALSE(std::filesystem::exists(first_ + ".new")) << plan;
                 ASSERT_FALSE(std::filesystem::exists(second_ + ".new")) << plan;
                 std::filesystem::remove(first_);
                 std::filesystem::remove(second_);
               });
}

TEST_F(NvramFaultTest, AMendingThatFailsLosesNothing) {
  Fill();
  Put("last", "written");  // the older copy has the key, too
  const std::string good = ReadFile(second_);
  for (const std::string& damaged : {first_, second_}) {
    const std::string& whole = damaged == first_ ? second_ : first_;
    for (const size_t length : {size_t{0}, kCopySize}) {
      WriteFile(whole, good);
      WriteFile(damaged, std::string(length, '\0'));
      std::string value;
      FailEachCall([&](const std::string&) { value = Value("key"); },
                   [&](const std::string& plan) {
                     EXPECT_TRUE(value == "old" || value == "(closed)") << plan << ": " << value;
                     ASSERT_EQ(Value("key"), "old") << plan;
                     ASSERT_EQ(ReadFile(damaged), good) << plan;
                     WriteFile(damaged, std::string(length, '\0'));
                   });
    }
  }
}

TEST_F(NvramFaultTest, AProcessKilledAtAnyCallLeavesTheOldValueOrTheNew) {
  Fill();
  std::string value = "old";
  for (const char* call : {"write", "fsync", "open", "close"}) {
    for (const char* effect : {"kill", "then-kill"}) {
      for (int which = 1; which <= 4; ++which) {
        const std::string plan = std::string(call) + ":" + std::to_string(which) + ":" + effect;
        const std::string next = "after " + plan;
        const pid_t child = fork();
        if (child == 0) {
          const Fault fault(Folder(), plan);
          _exit(Put("key", next) == 0 ? 0 : 1);
        }
        int status = 0;
        waitpid(child, &status, 0);
        const std::string now = Value("key");
        ASSERT_TRUE(now == value || now == next) << plan << ": " << now;
        value = now;
        ASSERT_EQ(Value("kept"), "yes") << plan;
      }
    }
  }
}

TEST_F(NvramFaultTest, WithoutTheToolsLockItWorksAndSaysSoOnce) {
  const TraceCapture trace;
  const Fault fault(Place("/var/lock"), "open:all:EACCES");
  EXPECT_EQ(Put("key", "value"), 0);
  EXPECT_EQ(Value("key"), "value");
  EXPECT_EQ(std::ranges::count(trace.Texts(),
                               "nvram: cannot keep fw_setenv away: /var/lock/fw_printenv.lock: "
                               "Permission denied"),
            1);
}

}  // namespace
