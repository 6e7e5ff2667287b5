// Copies and removals on a disk that refuses: the target is the old file or the new one, whole.
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <future>
#include <string>
#include <vector>

#include "fault.h"
#include "temp_dir.h"
#include "trace_capture.h"
#include "zq_file.h"

namespace {

namespace fs = std::filesystem;

class FileFault : public testing::Test {
 protected:
  FileFault() {
    WriteFile(source_, new_);
    WriteFile(target_, "old");
  }

  bool Copy(bool overwrite = true) const { return zq_CopyFile(source_.c_str(), target_.c_str(), overwrite); }
  size_t Entries() const {
    return static_cast<size_t>(
        std::distance(fs::directory_iterator(folder_.Path()), fs::directory_iterator()));
  }

  const std::string new_ = std::string(150'000, 'n');
  TempDir sources_;
  TempDir folder_;
  std::string source_ = sources_ / "source";
  std::string target_ = folder_ / "target";
};

TEST_F(FileFault, KeepsTheOldFileWhenTheDiskIsFull) {
  for (const char* plan : {"open:1:ENOSPC", "write:1:ENOSPC", "write:2:ENOSPC", "write:3:EIO", "fsync:1:EIO",
                           "fchmod:1:EPERM", "close:1:EIO", "rename:1:EROFS"}) {
    const TraceCapture trace;
    {
      const Fault fault(folder_.Path(), plan);
      EXPECT_FALSE(Copy()) << plan;
    }
    EXPECT_EQ(ReadFile(target_), "old") << plan;
    EXPECT_EQ(Entries(), 1U) << plan;
    EXPECT_EQ(trace.Lines().size(), 1U) << plan;
  }
}

TEST_F(FileFault, ATargetThatIsNotThereStaysSo) {
  fs::remove(target_);
  for (const char* plan : {"write:2:ENOSPC", "fsync:1:EIO", "close:1:EIO", "rename:all:EIO"}) {
    const Fault fault(folder_.Path(), plan);
    EXPECT_FALSE(Copy(false)) << plan;
    EXPECT_FALSE(fs::exists(target_)) << plan;
  }
  EXPECT_EQ(Entries(), 0U);
}

TEST_F(FileFault, ASourceThatCannotBeReadToItsEndIsNotCopied) {
  for (const char* plan : {"open:1:EACCES", "read:1:EIO", "read:3:EIO"}) {
    const Fault fault(sources_.Path(), plan);
    EXPECT_FALSE(Copy()) << plan;
    EXPECT_EQ(ReadFile(target_), "old") << plan;
  }
  EXPECT_EQ(Entries(), 1U);
}

TEST_F(FileFault, ShortAndInterruptedCallsAreGoneOnWith) {
  const Fault fault(folder_.Path(), "write:1:short,write:2:EINTR,write:4:short");
  EXPECT_TRUE(Copy());
  EXPECT_EQ(ReadFile(target_), new_);
}

TEST_F(FileFault, TheCopyIsOnTheDiskBeforeItHasItsName) {
  const Fault fault(folder_.Path(), "rename:1:kill");
  EXPECT_EXIT(
      {
        Copy();
        _exit(0);
      },
      testing::KilledBySignal(SIGKILL), "");
  const Fault count(folder_.Path(), "");
  EXPECT_TRUE(Copy());
  EXPECT_EQ(count.Calls("fsync"), 2) << "the file and its folder";
}

TEST_F(FileFault, AProcessThatIsKilledLeavesTheOldFileOrTheNewOne) {
  for (const char* plan : {"open:1:then-kill", "write:1:then-kill", "write:3:kill", "fsync:1:then-kill",
                           "close:1:kill", "rename:1:kill", "rename:1:then-kill"}) {
    WriteFile(target_, "old");
    EXPECT_EXIT(
        {
          const Fault fault(folder_.Path(), plan);
          Copy();
          _exit(0);
        },
        testing::KilledBySignal(SIGKILL), "");
    const bool renamed = std::string(plan) == "rename:1:then-kill";
    EXPECT_EQ(ReadFile(target_), renamed ? new_ : "old") << plan;
  }
  EXPECT_TRUE(Copy()) << "what they left behind does not stand in the way";
}

TEST_F(FileFault, WhereAFileCannotBeNamedOnlyIfNewACheckTakesItsPlace) {
  {
    const Fault fault(folder_.Path(), "rename:1:EINVAL");
    EXPECT_FALSE(Copy(false));
  }
  EXPECT_EQ(ReadFile(target_), "old");
  fs::remove(target_);
  {
    const Fault fault(folder_.Path(), "rename:1:EINVAL");
    EXPECT_TRUE(Copy(false));
    EXPECT_EQ(fault.Calls("rename"), 2);
  }
  EXPECT_EQ(ReadFile(target_), new_);
}

TEST_F(FileFault, ARemovalThatTheDiskRefusesIsToldAndTraced) {
  for (const bool settled : {false, true}) {
    const TraceCapture trace;
    const Fault fault(folder_.Path(), "unlink:1:EROFS");
    EXPECT_FALSE(zq_RemoveFile(target_.c_str(), settled));
    EXPECT_TRUE(trace.Has("cannot remove " + target_ + ": Read-only file system"));
    EXPECT_TRUE(fs::exists(target_));
  }
}

TEST_F(FileFault, ASettledRemovalWithoutItsTurnRemovesNothing) {
  const Fault fault(folder_.Path(), "flock:1:ENOLCK");
  EXPECT_FALSE(zq_RemoveFile(target_.c_str(), true));
  EXPECT_TRUE(fs::exists(target_));
}

// A settings writer that is under way holds the folder's lock, and its last step brings the file back.
TEST_F(FileFault, ASettledRemovalComesAfterTheWriterThatIsUnderWay) {
  const int writer = open(folder_.Path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ASSERT_EQ(flock(writer, LOCK_EX), 0);
  const Fault fault(folder_.Path(), "");
  std::future<bool> removal =
      std::async(std::launch::async, [this] { return zq_RemoveFile(target_.c_str(), true); });
  while (fault.Calls("flock") == 0 && fs::exists(target_)) sched_yield();
  EXPECT_TRUE(fs::exists(target_)) << "it waits";
  WriteFile(folder_ / "temporary", "brought back");
  fs::rename(folder_ / "temporary", target_);
  close(writer);
  EXPECT_TRUE(removal.get());
  EXPECT_FALSE(fs::exists(target_));
}

TEST_F(FileFault, ARemovalThatNeedNotSettleDoesNotWait) {
  const int writer = open(folder_.Path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ASSERT_EQ(flock(writer, LOCK_EX), 0);
  EXPECT_TRUE(zq_RemoveFile(target_.c_str(), false));
  EXPECT_FALSE(fs::exists(target_));
  close(writer);
}

}  // namespace
