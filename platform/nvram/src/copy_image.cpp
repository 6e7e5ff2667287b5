#include "copy_image.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

constexpr std::string_view kFlags = ".flags=";

uint32_t Checksum(std::span<const uint8_t> data) {
  return static_cast<uint32_t>(crc32_z(0, data.data(), data.size()));
}

std::string_view Texts(std::span<const uint8_t> image, bool redundant) {
  const std::span<const uint8_t> data = image.subspan(HeaderSize(redundant));
  return {reinterpret_cast<const char*>(data.data()), data.size()};
}

// Takes the first text and its end off.
std::string_view TakeText(std::string_view& texts) {
  const std::string_view text = texts.substr(0, texts.find('\0'));
  texts.remove_prefix(std::min(text.size() + 1, texts.size()));
  return text;
}

}  // namespace

bool IsWhole(std::span<const uint8_t> image, bool redundant) {
  if (image.size() <= HeaderSize(redundant)) return false;
  uint32_t stored = 0;
  std::memcpy(&stored, image.data(), sizeof stored);
  return stored == Checksum(image.subspan(HeaderSize(redundant)));
}

bool IsReadable(std::span<const uint8_t> image, bool redundant) {
  if (image.size() <= HeaderSize(redundant)) return false;
  int flags = 0;
  std::string_view texts = Texts(image, redundant);
  while (!texts.empty() && texts.front() != '\0') flags += TakeText(texts).starts_with(kFlags) ? 1 : 0;
  return !texts.empty() && flags <= 1;
}

Bytes EmptyImage(size_t size, bool redundant, uint8_t counter) {
  return BuildImage({}, {}, size, redundant, counter).value_or(Bytes(size));
}

std::optional<Bytes> BuildImage(const Entries& entries, const std::string& flags, size_t size, bool redundant,
                                uint8_t counter) {
  const size_t header = HeaderSize(redundant);
  std::string texts(header, '\0');
  for (const auto& [key, value] : entries) texts.append(key).append("=").append(value).push_back('\0');
  if (!flags.empty()) texts.append(flags).push_back('\0');
  // One byte more: the empty text after the last.
  if (texts.size() >= size) return std::nullopt;
  Bytes image(texts.begin(), texts.end());
  image.resize(size);
  const uint32_t checksum = Checksum(std::span(image).subspan(header));
  std::memcpy(image.data(), &checksum, sizeof checksum);
  if (redundant) image[sizeof checksum] = counter;
  return image;
}

std::string FlagsText(std::span<const uint8_t> image, bool redundant) {
  std::string_view texts = Texts(image, redundant);
  while (!texts.empty() && texts.front() != '\0') {
    const std::string_view text = TakeText(texts);
    if (text.starts_with(kFlags)) return std::string(text);
  }
  return {};
}

uint8_t Counter(std::span<const uint8_t> image, bool redundant) {
  return redundant ? image[4] : 0;
}

size_t NewerCopy(uint8_t first, uint8_t second) {
  if (first == 255 && second == 0) return 1;
  if (first == 0 && second == 255) return 0;
  return second > first ? 1 : 0;
}
