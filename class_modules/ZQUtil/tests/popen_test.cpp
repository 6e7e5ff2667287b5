// Shell commands with their output captured.
#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "ZQFileUtilities.h"
#include "ZQPopen.h"
#include "module_fixture.h"
#include "refused_memory.h"

namespace {

bool g_noProcesses = false;

}  // namespace

// In front of the C library's: a system that has no process left to give.
extern "C" __attribute__((visibility("default"))) int system(const char* command) {
  if (g_noProcesses) return -1;
  return reinterpret_cast<int (*)(const char*)>(dlsym(RTLD_NEXT, "system"))(command);
}

namespace {

class PopenTest : public ModuleTest {
 protected:
  PopenTest() {
    New();
    Settle();
    ForgetTraces();
  }
  ~PopenTest() override {
    zq_StringDestroy(out);
    zq_StringDestroy(err);
  }

  static std::string Bytes(const _ZqString* string) {
    return {zq_StringText(string), zq_StringLength(string)};
  }

  // What the captures' files are called, of those that are left.
  static int FilesLeft() {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/tmp")) {
      if (entry.path().filename().string().rfind(".popen-", 0) == 0) ++count;
    }
    return count;
  }

  _ZqString* out = zq_StringCreate(128);
  _ZqString* err = zq_StringCreate(128);
};

TEST_F(PopenTest, TheOutputIsCapturedWithItsNewlinesReplacedAndItsEndMarked) {
  EXPECT_TRUE(ZQPopen("echo a", out, nullptr, '|'));
  EXPECT_EQ(Bytes(out), "a|\xFF");
  EXPECT_EQ(FilesLeft(), 0);
}

TEST_F(PopenTest, BothCapturesOfASilentCommandHoldTheEndMarkAndTheAnswerIsFalse) {
  EXPECT_FALSE(ZQPopen("true", out, err, '\n'));
  EXPECT_EQ(Bytes(out), "\xFF");
  EXPECT_EQ(Bytes(err), "\xFF");
  EXPECT_EQ(Traces(), "");
}

TEST_F(PopenTest, OutputAndErrorsGoToTheirOwnCaptures) {
  EXPECT_FALSE(ZQPopen("echo one; echo two >&2; echo three", out, err, ' '));
  EXPECT_EQ(Bytes(out), "one three \xFF");
  EXPECT_EQ(Bytes(err), "two \xFF");
}

TEST_F(PopenTest, CapturesStartEmpty) {
  zq_StringAppend(out, "old");
  zq_StringAppend(err, "old");
  ZQPopen("true", out, err, '\n');
  EXPECT_EQ(Bytes(out) + Bytes(err), "\xFF\xFF");
}

TEST_F(PopenTest, TheExitStatusDoesNotMatter) {
  EXPECT_TRUE(ZQPopen("exit 3", nullptr, nullptr, '\n'));
  EXPECT_TRUE(ZQPopen("no-such-command", nullptr, nullptr, '\n'));
  EXPECT_TRUE(ZQPopen("kill -9 $$", nullptr, nullptr, '\n'));
}

TEST_F(PopenTest, TheCommandRunsInASubshellOfItsOwn) {
  EXPECT_TRUE(ZQPopen("cd /etc; echo x > there.txt; exit 0", out, nullptr, '\n'));
  EXPECT_EQ(ReadFile("/etc/there.txt"), "x\n") << "on the device";
  EXPECT_EQ(unlink("/etc/there.txt"), 0);
}

TEST_F(PopenTest, DoubleQuotesBreakTheQuoting) {
  // Two words for the outer shell: the inner one gets `(echo 'a` alone.
  EXPECT_TRUE(ZQPopen("echo 'a\"  \"b'", out, nullptr, '\n'));
  EXPECT_EQ(Bytes(out), "\xFF");
}

TEST_F(PopenTest, ALongOutputIsWhole) {
  EXPECT_TRUE(ZQPopen("seq 1 20000", out, nullptr, ','));
  const std::string bytes = Bytes(out);
  EXPECT_EQ(bytes.substr(0, 6), "1,2,3,");
  EXPECT_EQ(bytes.substr(bytes.size() - 7), "20000,\xFF");
}

TEST_F(PopenTest, NulBytesOfTheOutputAreNoText) {
  EXPECT_TRUE(ZQPopen("printf 'a\\000b\\n'", out, nullptr, '\0'));
  EXPECT_EQ(Bytes(out), "ab\xFF");
}

TEST_F(PopenTest, ABytelessErrorIsNotMistakenForTheEnd) {
  EXPECT_TRUE(ZQPopen("printf '\\377x'", out, nullptr, '\n'));
  EXPECT_EQ(Bytes(out), "\xFFx\xFF");
}

TEST_F(PopenTest, AHostWithoutAStandardInputLeavesItsDescriptorToACapture) {
  const int kept = dup(STDIN_FILENO);
  ASSERT_EQ(close(STDIN_FILENO), 0);
  const bool answer = ZQPopen("echo a", out, nullptr, '|');
  EXPECT_EQ(close(STDIN_FILENO), -1) << "it is given back";
  ASSERT_EQ(dup2(kept, STDIN_FILENO), STDIN_FILENO);
  close(kept);
  EXPECT_TRUE(answer);
  EXPECT_EQ(Bytes(out), "a|\xFF");
  EXPECT_EQ(FilesLeft(), 0);
}

TEST_F(PopenTest, WithoutRoomForTheFilesNothingRuns) {
  std::filesystem::rename(OnThisMachine("/tmp"), OnThisMachine("/tmp-aside"));
  zq_StringAppend(out, "old");
  const bool answer = ZQPopen("touch /ran", out, nullptr, '\n');
  std::filesystem::rename(OnThisMachine("/tmp-aside"), OnThisMachine("/tmp"));
  EXPECT_FALSE(answer);
  EXPECT_EQ(Bytes(out), "") << "nothing of an earlier command";
  EXPECT_FALSE(std::filesystem::exists("/ran"));
  EXPECT_EQ(Traces(), "failed to execute pclose\n");
  EXPECT_EQ(trace.Lines().back().level, 30000);
}

TEST_F(PopenTest, WithoutMemoryForTheCommandLineNothingRuns) {
  const std::string command = "touch /ran; : " + std::string(100000, 'x');
  zq_StringAppend(out, "old");
  bool answer = true;
  {
    const RefusedMemory refused(command.size());
    answer = ZQPopen(command.c_str(), out, nullptr, '\n');
  }
  EXPECT_FALSE(answer);
  EXPECT_EQ(Bytes(out), "\xFF");
  EXPECT_FALSE(std::filesystem::exists("/ran"));
  EXPECT_EQ(FilesLeft(), 0);
  EXPECT_EQ(Traces(), "");
}

TEST_F(PopenTest, WithoutMemoryForItsTargetNothingIsCopied) {
  const std::string target = "/tmp/" + std::string(100000, 'x');
  const RefusedMemory refused(target.size());
  EXPECT_FALSE(ZQCopyFile("/etc/hosts", target.c_str()));
}

TEST_F(PopenTest, ASystemThatStartsNoProcessIsAFailureWithTheCommandLine) {
  g_noProcesses = true;
  const bool answer = ZQPopen("true", out, nullptr, '\n');
  g_noProcesses = false;
  EXPECT_FALSE(answer);
  EXPECT_EQ(Bytes(out), "\xFF") << "the output file is empty";
  EXPECT_EQ(FilesLeft(), 0);
  const std::string traces = Traces();
  const std::string before = "files or processes could not be created (sh -c \"(true)\" 1>/tmp/.popen-";
  EXPECT_EQ(traces.substr(0, before.size()), before);
  EXPECT_EQ(traces.substr(before.size() + 6, 16), " 2>/tmp/.popen-" + traces.substr(before.size() + 21, 1));
  EXPECT_EQ(traces.size(), before.size() + 6 + 15 + 6 + 2) << traces;
  EXPECT_EQ(trace.Lines().back().level, 10000);
}

TEST_F(PopenTest, AppendsOneCharacter) {
  zq_StringReset(out);
  for (const char character : {'a', '\xFF', '\0', '\n'}) ZQString_appendCharacter(out, character);
  EXPECT_EQ(Bytes(out), "a\xFF\n");
}

}  // namespace
