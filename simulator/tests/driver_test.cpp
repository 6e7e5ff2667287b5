// Simulated driver files: each opening for writing replaces the value; entries neither come nor go.
#include <filesystem>
#include <fstream>

#include "device_fixture.h"

namespace {

class Driver : public DeviceTest {
 protected:
  // What is in the backlight's file after the program's write of "42" over "100".
  std::string AfterWriting(const std::vector<std::string>& words) {
    WriteFile(Place("/proc/blctrl"), "100");
    const ProgramResult result = Run(words);
    EXPECT_EQ(result.status, 0) << result.errors;
    return ReadFile(Place("/proc/blctrl"));
  }
};

constexpr const char* kWriter = ZQSIM_PROBES "/zqsim_write";

TEST_F(Driver, TakesEachWriteAsTheWholeValue) {
  for (const char* how :
       {"open", "open+", "open-creat", "fopen-w", "fopen-r+", "fopen-a", "freopen-r+", "spawn"}) {
    EXPECT_EQ(AfterWriting({kWriter, how, "/proc/blctrl", "42"}), "42") << how;
  }
}

TEST_F(Driver, APlainFileKeepsItsTail) {
  WriteFile(Place("/tmp/level"), "100");
  EXPECT_EQ(Run({kWriter, "open", "/tmp/level", "42"}).status, 0);
  EXPECT_EQ(ReadFile(Place("/tmp/level")), "420");
}

TEST_F(Driver, ReadingLeavesTheValue) {
  WriteFile(Place("/proc/blctrl"), "100");
  EXPECT_EQ(Shell("cat /proc/blctrl /proc/blctrl"), "100100");
  EXPECT_EQ(ReadFile(Place("/proc/blctrl")), "100");
}

TEST_F(Driver, AFileThatIsNotThereCannotBeMade) {
  for (const char* how : {"open", "open-creat", "open-excl", "fopen-w", "fopen-a", "freopen-r+", "spawn"}) {
    for (const char* path : {"/proc/none", "/sys/class/none"}) {
      const ProgramResult result = Run({kWriter, how, path, "42"});
      EXPECT_EQ(result.output, "No such file or directory\n") << how << path;
      EXPECT_FALSE(std::filesystem::exists(Place(path)));
    }
  }
  EXPECT_EQ(Run({kWriter, "open-excl", "/proc/blctrl", "42"}).output, "File exists\n");
}

TEST_F(Driver, EntriesNeitherComeNorGo) {
  EXPECT_EQ(Shell("mkdir /proc/a; mkdir /proc/net; ln -s /etc /sys/a; mkfifo /proc/a; mktemp /proc/XXXXXX; "
                  "rm -f /proc/blctrl; rm -f /proc/none; mv -T /tmp /proc/a; mv /proc/blctrl /proc/b; true"),
            "mkdir: cannot create directory '/proc/a': No such file or directory\n"
            "mkdir: cannot create directory '/proc/net': File exists\n"
            "ln: failed to create symbolic link '/sys/a': No such file or directory\n"
            "mkfifo: cannot create fifo '/proc/a': No such file or directory\n"
            "mktemp: failed to create file via template '/proc/XXXXXX': No such file or directory\n"
            "rm: cannot remove '/proc/blctrl': Operation not permitted\n"
            "mv: cannot create directory '/proc/a': No such file or directory\n"
            "mv: cannot move '/proc/blctrl' to '/proc/b': Operation not permitted\n");
  EXPECT_EQ(ReadFile(Place("/proc/blctrl")), "100\n");
}

TEST_F(Driver, APersonMayDoAllOfThat) {
  EXPECT_EQ(Shell("echo 1 > $ZQ_DEVICE/proc/new && cat /proc/new && rm $ZQ_DEVICE/proc/new && ls /proc/new"),
            "1\nls: cannot access '/proc/new': No such file or directory\nstatus 2\n");
}

TEST_F(Driver, ErrnoOfACallThatSucceedsIsKept) {
  EXPECT_EQ(Run({ZQSIM_PROBES "/zqsim_write", "errno", "/etc/hosts", ""}).output, "kept\n");
}

}  // namespace
