// Settings in a file of 50 lines: one value read and written, beside the plainest thing a program could do
// instead.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "zq_ini.h"

namespace {

// A folder with one file of 50 lines in 5 sections, in $TMPDIR.
class SettingsFile {
 public:
  SettingsFile() {
    std::string pattern = (std::filesystem::temp_directory_path() / "zq-ini-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) abort();
    folder_ = pattern;
    std::ofstream file(Path());
    for (int section = 0; section < 5; ++section) {
      file << "[section" << section << "]\n; what it is for\n";
      for (int key = 0; key < 7; ++key) file << "key" << key << " = value " << section * key << '\n';
      file << '\n';
    }
  }
  SettingsFile(const SettingsFile&) = delete;
  SettingsFile& operator=(const SettingsFile&) = delete;
  ~SettingsFile() { std::filesystem::remove_all(folder_); }

  std::string Path() const { return folder_ / "settings.ini"; }

 private:
  std::filesystem::path folder_;
};

void ReadOneValue(benchmark::State& state) {
  const SettingsFile settings;
  const std::string path = settings.Path();
  char buffer[100];
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        zq_GetINIFileString("section4", "key6", "", buffer, sizeof buffer, path.c_str()));
  }
}
BENCHMARK(ReadOneValue);

// What the read above cannot go below: the bytes, not looked at.
void ReadTheFileOnly(benchmark::State& state) {
  const SettingsFile settings;
  const std::string path = settings.Path();
  for (auto _ : state) {
    std::ifstream file(path, std::ios::binary);
    std::string bytes(4096, '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    benchmark::DoNotOptimize(bytes);
  }
}
BENCHMARK(ReadTheFileOnly);

void Write(benchmark::State& state, bool durable) {
  const SettingsFile settings;
  const std::string path = settings.Path();
  int32_t number = 0;
  for (auto _ : state) {
    if (!zq_WriteINIFileInt("section4", "key6", ++number, path.c_str(), durable)) {
      state.SkipWithError("not written");
      break;
    }
  }
}
BENCHMARK_CAPTURE(Write, quick, false)->UseRealTime();
BENCHMARK_CAPTURE(Write, durable, true)->UseRealTime();

void WriteTheSameValue(benchmark::State& state) {
  const SettingsFile settings;
  const std::string path = settings.Path();
  for (auto _ : state) {
    benchmark::DoNotOptimize(zq_WriteINIFileInt("section4", "key6", 7, path.c_str(), false));
  }
}
BENCHMARK(WriteTheSameValue)->UseRealTime();

// Cut off and written in place: what loses the settings when the power fails or the disk is full.
void OverwriteInPlace(benchmark::State& state) {
  const SettingsFile settings;
  const std::string path = settings.Path();
  const std::string bytes(1000, 'x');
  for (auto _ : state) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
  }
}
BENCHMARK(OverwriteInPlace)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
