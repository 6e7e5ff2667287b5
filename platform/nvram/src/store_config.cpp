#include "store_config.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>

namespace {

// A copy holds at least a key of one letter without a value, and is small enough to be read at every access.
constexpr size_t kLeastSize = 16;
constexpr size_t kMostSize = 16U << 20U;
// Bytes of the file; those in use have a few hundred.
constexpr size_t kMostText = 64U << 10U;
// What the library keeps of a path.
constexpr size_t kLongestPath = 255;

// Takes a line as the library does (it reads by the same format), so that both mean the same copies.
std::optional<CopyPlace> ParseLine(const std::string& line) {
  char* name = nullptr;
  long long offset = 0;
  size_t size = 0;
  // NOLINTNEXTLINE(cert-err34-c)
  const int fields = std::sscanf(line.c_str(), "%ms %lli %zx", &name, &offset, &size);
  const std::unique_ptr<char, decltype(&std::free)> owned(name, &std::free);
  if (fields != 3) return std::nullopt;
  return CopyPlace{name, offset, size};
}

bool IsBlankOrComment(const std::string& line) {
  const size_t first = line.find_first_not_of(" \t\r\f\v");
  return first == std::string::npos || line[first] == '#';
}

std::string JudgePlaces(const std::vector<CopyPlace>& copies) {
  for (const CopyPlace& copy : copies) {
    if (copy.size < kLeastSize || copy.size > kMostSize)
      return "the size of " + copy.path + " is not between 0x10 and 0x1000000";
    if (copy.path.size() > kLongestPath) return "the path " + copy.path + " is longer than 255 characters";
  }
  if (copies.size() < 2) return {};
  if (copies[0].size != copies[1].size) return "the two copies differ in size";
  const uint64_t apart =
      copies[0].offset < copies[1].offset
          ? static_cast<uint64_t>(copies[1].offset) - static_cast<uint64_t>(copies[0].offset)
          : static_cast<uint64_t>(copies[0].offset) - static_cast<uint64_t>(copies[1].offset);
  if (copies[0].path == copies[1].path && apart < copies[0].size) return "the two copies overlap";
  return {};
}

}  // namespace

std::string StoreConfigPath() {
  const char* named = std::getenv("ZQ_NVRAM_CONFIG");
  return named != nullptr && *named != '\0' ? named : "/etc/fw_env.config";
}

std::string ParseStoreConfig(std::string_view text, StoreConfig& config) {
  config.copies.clear();
  int senseless = 0;  // the number of the first such line
  int number = 0;
  while (!text.empty() && config.copies.size() < 2) {
    const size_t end = text.find('\n');
    const std::string line(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    ++number;
    if (IsBlankOrComment(line)) continue;
    if (std::optional<CopyPlace> copy = ParseLine(line))
      config.copies.push_back(*std::move(copy));
    else if (senseless == 0)
      senseless = number;
  }
  if (!config.Redundant() && senseless > 0)
    return "line " + std::to_string(senseless) + " is no \"path offset size\"";
  if (config.copies.empty()) return "it names no copy";
  return JudgePlaces(config.copies);
}

std::string ReadStoreConfig(const std::string& path, StoreConfig& config) {
  std::string text(kMostText, '\0');
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (!file.is_open() || file.bad()) return "cannot read " + path + ": " + std::strerror(errno);
  text.resize(static_cast<size_t>(file.gcount()));
  if (text.size() == kMostText) return path + " is no fw_env.config: it is too long";
  const std::string why = ParseStoreConfig(text, config);
  return why.empty() ? why : path + ": " + why;
}
