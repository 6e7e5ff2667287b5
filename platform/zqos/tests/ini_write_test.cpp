// What a write does to the file as a file.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <vector>

#include "ini_helpers.h"
#include "temp_dir.h"
#include "trace_capture.h"

namespace {

namespace fs = std::filesystem;

class IniWriteTest : public testing::Test {
 protected:
  struct stat Status() const {
    struct stat status {};
    EXPECT_EQ(stat(file_.c_str(), &status), 0);
    return status;
  }

  TempDir folder_;
  std::string file_ = folder_ / "settings.ini";
};

TEST_F(IniWriteTest, MakesAFileThatOthersMayReadAndNothingElse) {
  const mode_t before = umask(022);
  ASSERT_TRUE(Set("a", "x", "1", file_, true));
  umask(before);
  EXPECT_EQ(ReadFile(file_), "[a]\nx=1\n");
  EXPECT_EQ(Status().st_mode & 07777, 0644U);
  EXPECT_EQ(NamesIn(folder_.Path()), std::set<std::string>{"settings.ini"});
}

TEST_F(IniWriteTest, WritesNumbersAsText) {
  ASSERT_TRUE(zq_WriteINIFileInt("a", "x", INT32_MIN, file_.c_str(), false));
  ASSERT_TRUE(zq_WriteINIFileInt("a", "y", INT32_MAX, file_.c_str(), true));
  EXPECT_EQ(ReadFile(file_), "[a]\nx=-2147483648\ny=2147483647\n");
}

TEST_F(IniWriteTest, KeepsModeAndOwner) {
  WriteFile(file_, "[a]\nx=1\n");
  ASSERT_EQ(chmod(file_.c_str(), 0640), 0);
  if (geteuid() == 0) {
    ASSERT_EQ(chown(file_.c_str(), 1234, 4321), 0);
  }
  const struct stat before = Status();
  ASSERT_TRUE(Set("a", "x", "2", file_, true));
  EXPECT_EQ(Status().st_mode, before.st_mode);
  EXPECT_EQ(Status().st_uid, before.st_uid);
  EXPECT_EQ(Status().st_gid, before.st_gid);
  EXPECT_NE(Status().st_ino, before.st_ino);
}

TEST_F(IniWriteTest, AValueThatIsThereAlreadyLeavesTheFileUntouched) {
  WriteFile(file_, "[a]\nx = \"1\"\n");
  const struct stat before = Status();
  EXPECT_TRUE(Set("a", "x", "1", file_, false));
  EXPECT_TRUE(Set("a", "x", "1", file_, true));
  EXPECT_EQ(Status().st_ino, before.st_ino);
  EXPECT_EQ(ReadFile(file_), "[a]\nx = \"1\"\n");
}

TEST_F(IniWriteTest, RefusesNamesThatCannotStandInAFile) {
  WriteFile(file_, "[a]\nx=1\n");
  const struct stat before = Status();
  for (const char* name : {"", " ", "a\nb", "a\rb", "a=b", ";a", "#a", " ;a", "="}) {
    const TraceCapture trace;
    EXPECT_FALSE(Set(name, "x", "2", file_)) << name;
    EXPECT_FALSE(Set("a", name, "2", file_)) << name;
    EXPECT_EQ(trace.Texts().size(), 2U) << name;
  }
  for (const char* section : {"a]b", "]"}) EXPECT_FALSE(Set(section, "x", "2", file_)) << section;
  for (const char* key : {"[x", " [x", "[", "[x]"}) EXPECT_FALSE(Set("a", key, "2", file_)) << key;
  EXPECT_FALSE(zq_WriteINIFileString(nullptr, "x", "2", file_.c_str(), false));
  EXPECT_FALSE(zq_WriteINIFileString("a", nullptr, "2", file_.c_str(), false));
  EXPECT_FALSE(zq_WriteINIFileString("a", "x", nullptr, file_.c_str(), false));
  EXPECT_FALSE(zq_WriteINIFileString("a", "x", "2", nullptr, false));
  EXPECT_EQ(Status().st_ino, before.st_ino);
  EXPECT_EQ(NamesIn(folder_.Path()), std::set<std::string>{"settings.ini"});
}

TEST_F(IniWriteTest, AKeyMayHoldBracketsButAtItsStart) {
  for (const char* key : {"]", "a]b", "a[0]"}) {
    EXPECT_TRUE(Set("s", key, key, file_)) << key;
    EXPECT_TRUE(Set("s", key, key, file_)) << key;
  }
  EXPECT_TRUE(Set("s", "]", "new", file_));
  EXPECT_EQ(ReadFile(file_), "[s]\n]=new\na]b=a]b\na[0]=a[0]\n");
  EXPECT_EQ(Value("s", "a]b", file_), "a]b");
}

TEST_F(IniWriteTest, ALinkStaysALinkAndTheFileItNamesIsWritten) {
  fs::create_directories(folder_ / "real/deeper");
  WriteFile(folder_ / "real/target.ini", "[a]\nx=1\n");
  fs::create_symlink("../target.ini", folder_ / "real/deeper/hop");
  fs::create_symlink("real/deeper/hop", file_);
  ASSERT_TRUE(Set("a", "x", "2", file_, true));
  EXPECT_TRUE(fs::is_symlink(file_));
  EXPECT_TRUE(fs::is_symlink(folder_ / "real/deeper/hop"));
  EXPECT_EQ(ReadFile(folder_ / "real/target.ini"), "[a]\nx=2\n");
}

TEST_F(IniWriteTest, ALinkToNothingYetGetsItsFile) {
  fs::create_directory(folder_ / "real");
  fs::create_symlink(folder_ / "real/target.ini", file_);
  ASSERT_TRUE(Set("a", "x", "2", file_));
  EXPECT_TRUE(fs::is_symlink(file_));
  EXPECT_EQ(ReadFile(folder_ / "real/target.ini"), "[a]\nx=2\n");
}

TEST_F(IniWriteTest, RefusesWhatIsNoFileAndSaysWhy) {
  fs::create_directory(file_);
  fs::create_symlink("loop", folder_ / "loop");
  const TraceCapture trace;
  EXPECT_FALSE(Set("a", "x", "1", file_));
  EXPECT_FALSE(Set("a", "x", "1", folder_ / "missing/a.ini"));
  EXPECT_FALSE(Set("a", "x", "1", folder_ / "loop"));
  EXPECT_EQ(
      trace.Texts(),
      (std::vector<std::string>{
          "INI: cannot read " + file_ + ": Is a directory",
          "INI: cannot lock the folder of " + (folder_ / "missing/a.ini") + ": No such file or directory",
          "INI: cannot read " + (folder_ / "loop") + ": Too many levels of symbolic links"}));
  EXPECT_TRUE(fs::is_directory(file_));
}

TEST_F(IniWriteTest, RefusesToOverwriteAFileThatMayNotBeWritten) {
  WriteFile(file_, "[a]\nx=1\n");
  fs::permissions(folder_.Path(), fs::perms::all);
  fs::permissions(file_, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  const pid_t child = InChild([this] {
    if (geteuid() == 0 && setuid(65534) != 0) return 2;
    return Set("a", "x", "2", file_) ? 1 : 0;
  });
  EXPECT_EQ(AwaitChild(child), 0);
  EXPECT_EQ(ReadFile(file_), "[a]\nx=1\n");
}

TEST_F(IniWriteTest, RefusesToGrowAFileBeyondWhatCanBeRead) {
  const std::string before = "[a]\nx=1\n";
  WriteFile(file_, before);
  fs::resize_file(file_, 64 << 20);
  EXPECT_FALSE(Set("a", "x", "22", file_));
  EXPECT_TRUE(Set("a", "x", "2", file_));
  EXPECT_EQ(Value("a", "x", file_), "2");
}

TEST_F(IniWriteTest, RemovesWhatAKilledWriterOfTheFolderLeftBehind) {
  WriteFile(folder_ / ".zq-settings.new", "[a]\nx=half");
  WriteFile(folder_ / ".zq-settings.old", "[a]\nx=old");
  ASSERT_TRUE(Set("a", "x", "1", file_));
  EXPECT_EQ(NamesIn(folder_.Path()), std::set<std::string>{"settings.ini"});
}

TEST_F(IniWriteTest, WaitsForItsTurnWhileAnotherProgramHoldsTheFoldersLock) {
  WriteFile(file_, "[a]\nx=1\n");
  int ready[2];
  ASSERT_EQ(pipe(ready), 0);
  const int lock = open(folder_.Path().c_str(), O_RDONLY | O_DIRECTORY);
  ASSERT_EQ(flock(lock, LOCK_EX), 0);
  const pid_t child = InChild([&] {
    close(lock);
    if (write(ready[1], "r", 1) != 1) return 2;
    return Set("a", "y", "child", file_) ? 0 : 1;
  });
  char byte = 0;
  ASSERT_EQ(read(ready[0], &byte, 1), 1);
  // What is written here without regard to the child is not lost, because the child reads only in its turn.
  WriteFile(file_, "[a]\nx=2\n");
  ASSERT_EQ(flock(lock, LOCK_UN), 0);
  EXPECT_EQ(AwaitChild(child), 0);
  EXPECT_EQ(ReadFile(file_), "[a]\nx=2\ny=child\n");
  close(lock);
  close(ready[0]);
  close(ready[1]);
}

TEST_F(IniWriteTest, ReadersDoNotWaitForTheFoldersLock) {
  WriteFile(file_, "[a]\nx=1\n");
  const int lock = open(folder_.Path().c_str(), O_RDONLY | O_DIRECTORY);
  ASSERT_EQ(flock(lock, LOCK_EX), 0);
  EXPECT_EQ(Value("a", "x", file_), "1");
  close(lock);
}

}  // namespace
