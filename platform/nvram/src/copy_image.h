// The bytes of one copy: a CRC of the data (4 bytes, the machine's order), with two copies a counter (1 byte,
// the greater is newer), then "KEY=VALUE" texts, each ended by a NUL, and an empty text after the last.
#ifndef ZQ_NVRAM_COPY_IMAGE_H
#define ZQ_NVRAM_COPY_IMAGE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

using Bytes = std::vector<uint8_t>;
// Keys and values in the order of the keys.
using Entries = std::vector<std::pair<std::string, std::string>>;

// Bytes before the data.
constexpr size_t HeaderSize(bool redundant) {
  return redundant ? 5 : 4;
}

// Whether the CRC holds.
bool IsWhole(std::span<const uint8_t> image, bool redundant);
// Whether the library can read it: the data has the empty text that ends it (the library would run past the
// end), and no second text of the key ".flags" (it would lose the first one's memory).
bool IsReadable(std::span<const uint8_t> image, bool redundant);
// A copy without keys.
Bytes EmptyImage(size_t size, bool redundant, uint8_t counter);
// The same with these keys and values, and `flags` (what FlagsText gave) after them. None when they do not
// fit.
std::optional<Bytes> BuildImage(const Entries& entries, const std::string& flags, size_t size, bool redundant,
                                uint8_t counter);
// The text of the key ".flags", types and permissions of other keys that boot loaders keep; "" when there is
// none.
std::string FlagsText(std::span<const uint8_t> image, bool redundant);
// 0 with one copy.
uint8_t Counter(std::span<const uint8_t> image, bool redundant);
// Which of two good copies counts, by their counters: 0 or 1. 0 follows 255; of equals the first.
size_t NewerCopy(uint8_t first, uint8_t second);

#endif
