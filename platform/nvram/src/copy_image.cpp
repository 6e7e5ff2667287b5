#include "copy_image.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

uint32_t Checksum(std::span<const uint8_t> data) {
  return static_cast<uint32_t>(crc32_z(0, data.data(), data.size()));
}

std::string_view Texts(std::span<const uint8_t> image, bool redundant) {
  const std::span<const uint8_t> data = image.subspan(HeaderSize(redundant));
  return {reinterpret_cast<const char*>(data.data()), data.size()};
}

}  // namespace

bool IsWhole(std::span<const uint8_t> image, bool redundant) {
  if (image.size() <= HeaderSize(redundant)) return false;
  uint32_t stored = 0;
  std::memcpy(&stored, image.data(), sizeof stored);
  return stored == Checksum(image.subspan(HeaderSize(redundant)));
}

bool IsEnded(std::span<const uint8_t> image, bool redundant) {
  if (image.size() <= HeaderSize(redundant)) return false;
  const std::string_view texts = Texts(image, redundant);
  return texts.front() == '\0' || texts.find(std::string_view("\0\0", 2)) != std::string_view::npos;
}

Bytes EmptyImage(size_t size, bool redundant, uint8_t counter) {
  Bytes image(size);
  const uint32_t checksum = Checksum(std::span(image).subspan(HeaderSize(redundant)));
  std::memcpy(image.data(), &checksum, sizeof checksum);
  if (redundant) image[sizeof checksum] = counter;
  return image;
}

size_t FlagsRoom(std::span<const uint8_t> image, bool redundant) {
  constexpr std::string_view kFlags = ".flags=";
  // Per entry at most ":", two letters and a comma.
  constexpr size_t kPerEntry = 4;
  size_t room = 0;
  std::string_view texts = Texts(image, redundant);
  while (!texts.empty() && texts.front() != '\0') {
    const std::string_view text = texts.substr(0, texts.find('\0'));
    if (text.starts_with(kFlags)) {
      const auto entries = static_cast<size_t>(std::count(text.begin(), text.end(), ',')) + 1;
      room = std::max(room, text.size() + entries * kPerEntry + 1);
    }
    texts.remove_prefix(std::min(text.size() + 1, texts.size()));
  }
  return room;
}
