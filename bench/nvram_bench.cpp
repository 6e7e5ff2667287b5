// The key store: one value read and written, beside the same done by the bare library. Two copies of 16 KiB
// in $TMPDIR, 40 keys.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "nvram.h"
#include "uboot_library.h"

namespace {

class BenchStore {
 public:
  BenchStore() {
    std::string pattern = (std::filesystem::temp_directory_path() / "zq-nvram-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) abort();
    folder_ = pattern;
    std::ofstream(Config()) << (folder_ / "a").string() << " 0 0x4000\n"
                            << (folder_ / "b").string() << " 0 0x4000\n";
    setenv("ZQ_NVRAM_CONFIG", Config().c_str(), 1);
    const int handle = nvram_open(0, 0);
    for (int key = 0; key < 40; ++key)
      nvram_write_key(handle, nullptr, ("key" + std::to_string(key)).c_str(), "some value of a usual length");
    nvram_close(handle);
  }
  BenchStore(const BenchStore&) = delete;
  BenchStore& operator=(const BenchStore&) = delete;
  ~BenchStore() { std::filesystem::remove_all(folder_); }

  std::string Config() const { return folder_ / "fw_env.config"; }

 private:
  std::filesystem::path folder_;
};

void OpenGetClose(benchmark::State& state) {
  const BenchStore store;
  char buffer[64];
  for (auto _ : state) {
    const int handle = nvram_open(0, 0);
    if (nvram_read_key(handle, nullptr, "key20", buffer, sizeof buffer) != 0) state.SkipWithError("no value");
    nvram_close(handle);
    benchmark::DoNotOptimize(buffer);
  }
}
BENCHMARK(OpenGetClose);

// Runs the act on the library's context, opened and closed around it.
template <typename Act>
bool WithLibrary(const BenchStore& store, Act act) {
  uboot_ctx* context = nullptr;
  if (libuboot_initialize(&context, nullptr) != 0) return false;
  const bool done = libuboot_read_config(context, store.Config().c_str()) == 0 &&
                    libuboot_open(context) == 0 && act(context);
  libuboot_close(context);
  libuboot_exit(context);
  return done;
}

void OpenGetCloseByTheLibrary(benchmark::State& state) {
  const BenchStore store;
  for (auto _ : state) {
    const bool done = WithLibrary(store, [](uboot_ctx* context) {
      char* value = libuboot_get_env(context, "key20");
      benchmark::DoNotOptimize(value);
      free(value);
      return value != nullptr;
    });
    if (!done) state.SkipWithError("no value");
  }
}
BENCHMARK(OpenGetCloseByTheLibrary);

void OpenSetClose(benchmark::State& state) {
  const BenchStore store;
  int round = 0;
  for (auto _ : state) {
    const int handle = nvram_open(0, 0);
    if (nvram_write_key(handle, nullptr, "key20", std::to_string(++round).c_str()) != 0)
      state.SkipWithError("not written");
    nvram_close(handle);
  }
}
BENCHMARK(OpenSetClose)->UseRealTime();

void OpenSetCloseByTheLibrary(benchmark::State& state) {
  const BenchStore store;
  int round = 0;
  for (auto _ : state) {
    const std::string value = std::to_string(++round);
    const bool done = WithLibrary(store, [&value](uboot_ctx* context) {
      return libuboot_set_env(context, "key20", value.c_str()) == 0 && libuboot_env_store(context) == 0;
    });
    if (!done) state.SkipWithError("not written");
  }
}
BENCHMARK(OpenSetCloseByTheLibrary)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
