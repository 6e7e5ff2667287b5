// Handles, and what each call promises.
#include <thread>

#include "nvram_fixture.h"
#include "run_program.h"
#include "trace_capture.h"
#include "zq_trace.h"

namespace {

class NvramApiTest : public NvramTest {};

TEST_F(NvramApiTest, KeepsAValueAfterTheHandleIsClosed) {
  EXPECT_EQ(Put("lang", "de"), 0);
  EXPECT_EQ(Value("lang"), "de");
}

TEST_F(NvramApiTest, ReplacesAValue) {
  Put("lang", "de");
  EXPECT_EQ(Put("lang", "english"), 0);
  EXPECT_EQ(Value("lang"), "english");
}

TEST_F(NvramApiTest, ReadsItsOwnWritesOnOneHandleAndKeepsThemAll) {
  const int handle = nvram_open(0, 0);
  char buffer[16];
  for (int round = 0; round < 40; ++round) {
    const std::string value = std::to_string(round);
    ASSERT_EQ(nvram_write_key(handle, nullptr, "round", value.c_str()), 0);
    ASSERT_EQ(nvram_read_key(handle, nullptr, "round", buffer, sizeof buffer), 0);
    ASSERT_EQ(buffer, value);
  }
  EXPECT_EQ(nvram_close(handle), 0);
  EXPECT_EQ(Value("round"), "39");
}

TEST_F(NvramApiTest, WritesEachValueToTheOlderCopySoThatTheCounterTurnsOver) {
  for (int round = 0; round < 260; ++round) {
    ASSERT_EQ(Put("round", std::to_string(round)), 0);
    ASSERT_EQ(Value("round"), std::to_string(round));
  }
}

TEST_F(NvramApiTest, ErasesAKeyAndTakesAMissingOneForErased) {
  Put("lang", "de");
  EXPECT_EQ(Erase("lang"), 0);
  EXPECT_EQ(Value("lang"), "(missing)");
  EXPECT_EQ(Erase("lang"), 0);
  EXPECT_EQ(Erase(""), 0);
}

TEST_F(NvramApiTest, CutsALongValueToTheBuffer) {
  Put("key", "0123456789");
  const int handle = nvram_open(0, 0);
  char buffer[8] = "xxxxxxx";
  EXPECT_EQ(nvram_read_key(handle, nullptr, "key", buffer, 5), 0);
  EXPECT_EQ(std::string(buffer, 8), std::string("0123\0xx\0", 8));
  EXPECT_EQ(nvram_read_key(handle, nullptr, "key", buffer, 1), 0);
  EXPECT_STREQ(buffer, "");
  nvram_close(handle);
}

TEST_F(NvramApiTest, LeavesTheBufferUntouchedWhenTheReadFails) {
  Put("key", "value");
  const int handle = nvram_open(0, 0);
  char buffer[] = "before";
  EXPECT_EQ(nvram_read_key(handle, nullptr, "none", buffer, sizeof buffer), -1);
  EXPECT_EQ(nvram_read_key(handle + 1, nullptr, "key", buffer, sizeof buffer), -1);
  EXPECT_EQ(nvram_read_key(handle, nullptr, nullptr, buffer, sizeof buffer), -1);
  EXPECT_EQ(nvram_read_key(handle, nullptr, "key", buffer, 0), -1);
  EXPECT_EQ(nvram_read_key(handle, nullptr, "key", nullptr, 5), -1);
  EXPECT_STREQ(buffer, "before");
  nvram_close(handle);
}

TEST_F(NvramApiTest, RefusesNullPointersAndKeysThatCannotBeStored) {
  const int handle = nvram_open(0, 0);
  EXPECT_EQ(nvram_write_key(handle, nullptr, nullptr, "v"), -1);
  EXPECT_EQ(nvram_write_key(handle, nullptr, "k", nullptr), -1);
  EXPECT_EQ(nvram_erase_key(handle, nullptr, nullptr), -1);
  for (const char* key : {"", "=", "a=b", "a\nb", "a\r", ".flags"})
    EXPECT_EQ(nvram_write_key(handle, nullptr, key, "v"), -1) << key;
  nvram_close(handle);
}

TEST_F(NvramApiTest, RefusesClosedAndUnknownHandles) {
  const int handle = nvram_open(0, 0);
  EXPECT_GE(handle, 0);
  EXPECT_EQ(nvram_close(handle), 0);
  const int next = nvram_open(0, 0);
  for (const int bad : {handle, next + 1, -1}) {
    char buffer[4];
    EXPECT_EQ(nvram_close(bad), -1);
    EXPECT_EQ(nvram_write_key(bad, nullptr, "k", "v"), -1);
    EXPECT_EQ(nvram_erase_key(bad, nullptr, "k"), -1);
    EXPECT_EQ(nvram_read_key(bad, nullptr, "k", buffer, sizeof buffer), -1);
  }
  EXPECT_EQ(nvram_close(next), 0);
  EXPECT_EQ(Value("k"), "(missing)");
}

TEST_F(NvramApiTest, RefusesArgumentsThatMeanNothingYet) {
  EXPECT_EQ(nvram_open(1, 0), -1);
  EXPECT_EQ(nvram_open(0, 1), -1);
}

TEST_F(NvramApiTest, RefusesAThreadASecondHandleInsteadOfWaitingForItself) {
  const int handle = nvram_open(0, 0);
  const TraceCapture trace;
  EXPECT_EQ(nvram_open(0, 0), -1);
  EXPECT_TRUE(trace.Has("nvram: cannot open: this thread has it open already"));
  EXPECT_EQ(nvram_close(handle), 0);
  EXPECT_TRUE(CanOpen());
}

TEST_F(NvramApiTest, AnotherThreadWaitsUntilTheHandleIsClosed) {
  const int handle = nvram_open(0, 0);
  std::string seen;
  std::thread other([&] { seen = Value("key"); });
  EXPECT_EQ(nvram_write_key(handle, nullptr, "key", "written first"), 0);
  EXPECT_EQ(nvram_close(handle), 0);
  other.join();
  EXPECT_EQ(seen, "written first");
}

TEST_F(NvramApiTest, AHandleMayBeClosedByAnotherThread) {
  const int handle = nvram_open(0, 0);
  int result = -1;
  std::thread([&] { result = nvram_close(handle); }).join();
  EXPECT_EQ(result, 0);
  EXPECT_TRUE(CanOpen());
}

TEST_F(NvramApiTest, AnotherProcessWaitsUntilTheHandleIsClosed) {
  const int handle = nvram_open(0, 0);
  ASSERT_EQ(nvram_write_key(handle, nullptr, "key", "written first"), 0);
  ProgramResult shell{};
  std::thread other([&] { shell = RunProgram({"fw_printenv", "-c", config_, "-n", "key"}); });
  EXPECT_EQ(nvram_write_key(handle, nullptr, "key", "written last"), 0);
  EXPECT_EQ(nvram_close(handle), 0);
  other.join();
  EXPECT_EQ(shell.output, "written last\n");
}

TEST_F(NvramApiTest, MakesAnEmptyStoreWhenNeitherCopyIsThere) {
  EXPECT_TRUE(CanOpen());
  EXPECT_EQ(ReadFile(first_).size(), kCopySize);
  EXPECT_EQ(ReadFile(second_).size(), kCopySize);
  const auto mode = std::filesystem::status(first_).permissions();
  EXPECT_EQ(mode, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(NvramApiTest, NeverMakesCopiesAmongDevices) {
  Configure("/dev/zq-no-such-a 0 0x1000\n/dev/zq-no-such-b 0 0x1000\n");
  EXPECT_FALSE(CanOpen());
  EXPECT_FALSE(std::filesystem::exists("/dev/zq-no-such-a"));
}

TEST_F(NvramApiTest, RefusesADeviceThatIsNoStore) {
  Configure("/dev/zero 0 0x1000\n/dev/zero 0x1000 0x1000\n");
  EXPECT_EQ(Put("key", "value"), -1);
}

TEST_F(NvramApiTest, SaysInTheTraceWhyItCannotOpen) {
  const TraceCapture trace;
  setenv("ZQ_NVRAM_CONFIG", "/no/such", 1);
  EXPECT_EQ(nvram_open(0, 0), -1);
  EXPECT_TRUE(trace.Has("nvram: cannot open: cannot read /no/such: No such file or directory"));

  Configure(folder_ / "none/a" + " 0 0x1000\n" + folder_ / "none/b" + " 0 0x1000\n");
  EXPECT_EQ(nvram_open(0, 0), -1);
  EXPECT_TRUE(
      trace.Has("nvram: cannot open: cannot make " + folder_ / "none/a" + ": No such file or directory"));
}

TEST_F(NvramApiTest, SaysInTheTraceWhyACallFailed) {
  const TraceCapture trace;
  EXPECT_EQ(Put("a=b", "v"), -1);
  EXPECT_TRUE(trace.Has("nvram: cannot write a=b: the key has a \"=\""));
  EXPECT_EQ(Value("lang"), "(missing)");
  EXPECT_TRUE(trace.Has("nvram: cannot read lang: it is not in the store"));
  EXPECT_EQ(trace.Lines().back().level, ZQ_TRACE_NORMAL) << "a key that nobody has set is no failure";
  nvram_close(-1);
  EXPECT_TRUE(trace.Has("nvram: cannot close: the handle is not open"));
  EXPECT_EQ(trace.Lines().back().level, ZQ_TRACE_FAILURE);
}

TEST_F(NvramApiTest, ServesAConfigWithOneCopy) {
  Configure(first_ + " 0 0x1000\n");
  EXPECT_EQ(Put("key", "value"), 0);
  EXPECT_EQ(Put("other", "too"), 0);
  EXPECT_EQ(Value("key"), "value");
  EXPECT_EQ(Value("other"), "too");
  WriteFile(first_, "damage");
  EXPECT_FALSE(CanOpen());
  EXPECT_EQ(ReadFile(first_), "damage");
}

TEST_F(NvramApiTest, KeepsTwoCopiesInOneFileApart) {
  Configure(first_ + " 0x0 0x1000\n" + first_ + " 0x1000 0x1000\n");
  WriteFile(first_, std::string(2 * kCopySize, '\0'));
  EXPECT_FALSE(CanOpen());  // damaged, not missing
}

}  // namespace
