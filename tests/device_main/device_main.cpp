// A test program that runs on a simulated device of its own: it starts itself again on a fresh one, which is
// gone when it ends. Works under ctest and by hand alike.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "child_process.h"
#include "temp_dir.h"

namespace {

// In memory where the machine has room for it: the module asks for durable writes, and a real disk takes its
// time.
std::filesystem::path DeviceParent() {
  const char* const memory = "/dev/shm";
  return access(memory, W_OK) == 0 ? memory : std::filesystem::temp_directory_path();
}

// What a person's shell may say to the module and to the libraries below it: a test says it itself.
constexpr const char* kShellsWords[] = {
    "ZQ_CONFIG_DIR", "ZQ_CA_FILE", "ZQ_TRACE_LEVEL", "ZQ_NVRAM_CONFIG",  "http_proxy",
    "no_proxy",      "DISPLAY",    "OPENSSL_CONF",   "ALSA_CONFIG_PATH", "OPENSSL_MODULES",
    "TMPDIR",        "TMP",        "TEMP",           "TEMPDIR"};

int RunOnDevice(char** argv) {
  const TempDir folder(DeviceParent());
  std::string device = folder / "device";
  std::vector<char*> words;
  std::string fixed[] = {ZQ_SIM_PROGRAM, "run", device, "--"};
  for (std::string& word : fixed) words.push_back(word.data());
  std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
  words.push_back(self.data());
  for (int i = 1; argv[i] != nullptr; ++i) words.push_back(argv[i]);
  words.push_back(nullptr);
  const int status = AwaitChild(InChild([&] {
    // GoogleTest's other way to start a process for a death test gives it two pages of stack.
    setenv("GTEST_DEATH_TEST_USE_FORK", "1", 1);
    // The caller's folder need not be on the device, whose own is /tmp.
    for (const char* const name : {"TMPDIR", "TMP", "TEMP", "TEMPDIR"}) unsetenv(name);
    for (const char* const word : kShellsWords) unsetenv(word);
    execv(words[0], words.data());
    std::perror(words[0]);
    return 127;
  }));
  if (status < 0) std::fprintf(stderr, "ended by signal %d\n", -status);
  return status < 0 ? 1 : status;
}

}  // namespace

int main(int argc, char** argv) {
  if (std::getenv("ZQ_DEVICE") == nullptr) return RunOnDevice(argv);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
