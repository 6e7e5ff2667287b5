#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "temp_dir.h"
#include "trace_capture.h"
#include "zq_file.h"

namespace {

namespace fs = std::filesystem;

class FileCopy : public testing::Test {
 protected:
  FileCopy() { WriteFile(source_, "new"); }

  bool Copy(bool overwrite = true) const { return zq_CopyFile(source_.c_str(), target_.c_str(), overwrite); }
  static mode_t ModeOf(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
  }
  size_t Entries() const {
    return static_cast<size_t>(
        std::distance(fs::directory_iterator(folder_.Path()), fs::directory_iterator()));
  }

  TempDir folder_;
  std::string source_ = folder_ / "source";
  std::string target_ = folder_ / "target";
};

TEST_F(FileCopy, MakesTheTargetAndLeavesNothingElse) {
  EXPECT_TRUE(Copy(false));
  EXPECT_EQ(ReadFile(target_), "new");
  EXPECT_EQ(ReadFile(source_), "new");
  EXPECT_EQ(Entries(), 2U);
}

TEST_F(FileCopy, ContentsOfEverySizeComeWhole) {
  for (const size_t size : {0U, 1U, 65535U, 65536U, 65537U, 1'000'003U}) {
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 31 + i / 251);
    WriteFile(source_, bytes);
    ASSERT_TRUE(Copy());
    ASSERT_EQ(ReadFile(target_), bytes) << size;
  }
}

TEST_F(FileCopy, AFileWithoutASizeComesWhole) {
  ASSERT_TRUE(zq_CopyFile("/proc/version", target_.c_str(), false));
  EXPECT_EQ(ReadFile(target_), ReadFile("/proc/version"));
  EXPECT_NE(ReadFile(target_), "");
}

TEST_F(FileCopy, KeepsTheModeWhateverTheProcessesMaskAndTheOldFilesMode) {
  const mode_t mask = umask(077);
  for (const mode_t mode : {0644U, 0600U, 0755U, 0444U, 04711U}) {
    chmod(source_.c_str(), mode);
    EXPECT_TRUE(Copy());
    EXPECT_EQ(ModeOf(target_), mode);
  }
  umask(mask);
}

TEST_F(FileCopy, LeavesAnExistingTargetUnlessToldToOverwrite) {
  WriteFile(target_, "old");
  const TraceCapture trace;
  EXPECT_FALSE(Copy(false));
  EXPECT_EQ(ReadFile(target_), "old");
  EXPECT_EQ(trace.Raw(), "") << "an answer, not a failure";
  EXPECT_TRUE(Copy(true));
  EXPECT_EQ(ReadFile(target_), "new");
}

TEST_F(FileCopy, AFolderIsNeitherSourceNorTarget) {
  fs::create_directory(target_);
  EXPECT_FALSE(Copy(true));
  EXPECT_FALSE(Copy(false));
  EXPECT_TRUE(fs::is_directory(target_));
  EXPECT_FALSE(zq_CopyFile(target_.c_str(), (folder_ / "third").c_str(), true));
  EXPECT_EQ(Entries(), 2U);
}

TEST_F(FileCopy, ALinkToAFolderIsNoTargetEither) {
  fs::create_directory(folder_ / "sub");
  fs::create_directory_symlink("sub", target_);
  EXPECT_FALSE(Copy(true));
  EXPECT_TRUE(fs::is_symlink(target_));
  EXPECT_TRUE(fs::is_empty(folder_ / "sub"));
}

TEST_F(FileCopy, AMissingSourceLeavesTheTargetAndIsTraced) {
  WriteFile(target_, "old");
  const TraceCapture trace;
  EXPECT_FALSE(zq_CopyFile((folder_ / "missing").c_str(), target_.c_str(), true));
  EXPECT_EQ(ReadFile(target_), "old");
  EXPECT_TRUE(
      trace.Has("cannot copy " + folder_ / "missing" + " to " + target_ + ": No such file or directory"));
}

TEST_F(FileCopy, APipeOrADeviceIsNoSourceAndDoesNotHoldUp) {
  const std::string pipe = folder_ / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_FALSE(zq_CopyFile(pipe.c_str(), target_.c_str(), true));
  EXPECT_FALSE(zq_CopyFile("/dev/zero", target_.c_str(), true));
  EXPECT_FALSE(fs::exists(target_));
}

TEST_F(FileCopy, APipeIsNotReplaced) {
  ASSERT_EQ(mkfifo(target_.c_str(), 0600), 0);
  EXPECT_FALSE(Copy(true));
  EXPECT_TRUE(fs::is_fifo(target_));
}

TEST_F(FileCopy, AMissingFolderOfTheTargetIsAFailure) {
  EXPECT_FALSE(zq_CopyFile(source_.c_str(), (folder_ / "missing/target").c_str(), true));
}

TEST_F(FileCopy, ASourceThatIsALinkGivesTheFileItNames) {
  fs::create_symlink("source", folder_ / "link");
  ASSERT_TRUE(zq_CopyFile((folder_ / "link").c_str(), target_.c_str(), false));
  EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(target_)));
  EXPECT_EQ(ReadFile(target_), "new");
}

TEST_F(FileCopy, ATargetThatIsALinkStaysOneAndItsFileIsReplaced) {
  fs::create_directory(folder_ / "sub");
  WriteFile(folder_ / "sub/real", "old");
  fs::create_symlink("sub/real", target_);
  EXPECT_FALSE(Copy(false));
  EXPECT_EQ(ReadFile(folder_ / "sub/real"), "old");
  EXPECT_TRUE(Copy(true));
  EXPECT_TRUE(fs::is_symlink(target_));
  EXPECT_EQ(ReadFile(folder_ / "sub/real"), "new");
}

TEST_F(FileCopy, OntoItselfKeepsTheFile) {
  EXPECT_TRUE(zq_CopyFile(source_.c_str(), source_.c_str(), true));
  EXPECT_EQ(ReadFile(source_), "new");
  EXPECT_FALSE(zq_CopyFile(source_.c_str(), source_.c_str(), false));
}

TEST_F(FileCopy, TheLongestNameIsATarget) {
  target_ = folder_ / std::string(255, 'n');
  EXPECT_TRUE(Copy());
  EXPECT_EQ(ReadFile(target_), "new");
  EXPECT_FALSE(zq_CopyFile(source_.c_str(), (folder_ / std::string(256, 'n')).c_str(), true));
}

TEST_F(FileCopy, NullArgumentsAreRefused) {
  EXPECT_FALSE(zq_CopyFile(nullptr, target_.c_str(), true));
  EXPECT_FALSE(zq_CopyFile(source_.c_str(), nullptr, true));
  EXPECT_FALSE(zq_CopyFile("", "", true));
}

TEST_F(FileCopy, OfManyThatMayNotOverwriteExactlyOneWins) {
  constexpr size_t kCopiers = 8;
  for (int round = 0; round < 20; ++round) {
    fs::remove(target_);
    std::atomic<int> winner{-1};
    std::atomic<int> wins{0};
    std::vector<std::thread> copiers;
    for (size_t i = 0; i < kCopiers; ++i) {
      copiers.emplace_back([&, i] {
        const std::string own = folder_ / ("from" + std::to_string(i));
        WriteFile(own, std::string(100'000, static_cast<char>('a' + i)));
        if (!zq_CopyFile(own.c_str(), target_.c_str(), false)) return;
        ++wins;
        winner = static_cast<int>(i);
      });
    }
    for (std::thread& copier : copiers) copier.join();
    ASSERT_EQ(wins, 1);
    ASSERT_EQ(ReadFile(target_), std::string(100'000, static_cast<char>('a' + winner)));
  }
  EXPECT_EQ(Entries(), kCopiers + 2);
}

}  // namespace
