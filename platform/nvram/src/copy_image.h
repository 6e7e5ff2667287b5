// The bytes of one copy: a CRC of the data (4 bytes, the machine's order), with two copies a counter (1 byte,
// the greater is newer), then "KEY=VALUE" texts, each ended by a NUL, and an empty text after the last.
#ifndef ZQ_NVRAM_COPY_IMAGE_H
#define ZQ_NVRAM_COPY_IMAGE_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

using Bytes = std::vector<uint8_t>;

// Bytes before the data.
constexpr size_t HeaderSize(bool redundant) {
  return redundant ? 5 : 4;
}

// Whether the CRC holds.
bool IsWhole(std::span<const uint8_t> image, bool redundant);
// Whether the data has the empty text that ends it; a reader would run past the end otherwise.
bool IsEnded(std::span<const uint8_t> image, bool redundant);
// A copy without keys.
Bytes EmptyImage(size_t size, bool redundant, uint8_t counter);
// The most bytes that the text of the key ".flags" (types and permissions of other keys, kept by boot
// loaders) takes when the library writes it anew.
size_t FlagsRoom(std::span<const uint8_t> image, bool redundant);

#endif
