#include "temp_dir.h"

#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>
#include <stdexcept>

TempDir::TempDir() : TempDir(std::filesystem::temp_directory_path()) {}

TempDir::TempDir(const std::filesystem::path& parent) {
  std::string pattern = (parent / "zqutil-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder: " + pattern);
  path_ = pattern;
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void AwaitFileTick() {
  timespec before{};
  clock_gettime(CLOCK_REALTIME_COARSE, &before);
  for (timespec now = before; now.tv_sec == before.tv_sec && now.tv_nsec == before.tv_nsec;) {
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
  }
}

void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << bytes;
  if (!file.flush()) throw std::runtime_error("cannot write " + path);
}
