// What a call costs on a device: libc's own function against the one that stands before it, in one process.
// The program starts itself again on a fresh device.
#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "child_process.h"
#include "temp_dir.h"

namespace {

constexpr const char* kMachinePath = "/usr/bin/env";
constexpr const char* kDevicePath = "/etc/firmware.ver";
constexpr const char* kSharedPath = "/etc/ssl/openssl.cnf";

using Open = int (*)(const char*, int, ...);
using Stat = int (*)(const char*, struct stat*);

// The function of libc itself, whatever stands before it.
template <typename Function>
Function Libc(const char* name) {
  static void* const libc = dlopen("libc.so.6", RTLD_NOW | RTLD_NOLOAD);
  return reinterpret_cast<Function>(dlsym(libc, name));
}

std::string UnderRoot(const char* path) {
  return getenv("ZQ_DEVICE") + std::string(path);
}

void OpenClose(benchmark::State& state, Open call, const std::string& path) {
  for (auto _ : state) {
    const int descriptor = call(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) return state.SkipWithError("cannot be opened");
    close(descriptor);
  }
}

void Examine(benchmark::State& state, Stat call, const std::string& path) {
  struct stat facts;
  for (auto _ : state) {
    if (call(path.c_str(), &facts) != 0) return state.SkipWithError("is not there");
  }
}

void Register() {
  const Open libcOpen = Libc<Open>("open");
  const Stat libcStat = Libc<Stat>("stat");
  const auto open_close = [](const char* name, Open call, const std::string& path) {
    benchmark::RegisterBenchmark(name, OpenClose, call, path);
  };
  const auto examine = [](const char* name, Stat call, const std::string& path) {
    benchmark::RegisterBenchmark(name, Examine, call, path);
  };
  open_close("open+close/machine/libc", libcOpen, kMachinePath);
  open_close("open+close/machine/device", open, kMachinePath);
  open_close("open+close/mapped/libc", libcOpen, UnderRoot(kDevicePath));
  open_close("open+close/mapped/device", open, kDevicePath);
  examine("stat/machine/libc", libcStat, kMachinePath);
  examine("stat/machine/device", stat, kMachinePath);
  examine("stat/mapped/libc", libcStat, UnderRoot(kDevicePath));
  examine("stat/mapped/device", stat, kDevicePath);
  examine("stat/shared/libc", libcStat, kSharedPath);
  examine("stat/shared/device", stat, kSharedPath);
}

// Becomes this program on the device.
int BecomeOnDevice(const std::string& device, char** arguments) {
  std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
  std::string fixed[] = {ZQSIM_PROGRAM, "run", device, "--", self};
  std::vector<char*> words;
  for (std::string& word : fixed) words.push_back(word.data());
  for (int i = 1; arguments[i] != nullptr; ++i) words.push_back(arguments[i]);
  words.push_back(nullptr);
  execv(words[0], words.data());
  perror(words[0]);
  return 1;
}

}  // namespace

int main(int count, char** arguments) {
  if (getenv("ZQ_DEVICE") == nullptr) {
    const TempDir folder;
    return AwaitChild(InChild([&] { return BecomeOnDevice(folder / "device", arguments); }));
  }
  Register();
  benchmark::Initialize(&count, arguments);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
