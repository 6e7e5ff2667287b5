#include "iso_8859_1.h"

#include <bit>
#include <cstring>

namespace {

constexpr size_t kWord = sizeof(uint64_t);
constexpr uint64_t kHighBits = 0x8080808080808080U;
constexpr char kCDataStart[] = "![CDATA[";
constexpr size_t kCDataStartLength = sizeof kCDataStart - 1;

uint64_t LoadWord(const unsigned char* from) {
  uint64_t word = 0;
  std::memcpy(&word, from, kWord);
  return word;
}

// One character without a branch; writes two bytes, of which an ASCII character keeps the first.
unsigned char* ExpandOne(unsigned char* to, unsigned char c) {
  const unsigned high = c >> 7;
  to[0] = static_cast<unsigned char>(high != 0 ? (c >> 6) | 0xC0U : c);
  to[1] = static_cast<unsigned char>((c & 0x3FU) | 0x80U);
  return to + 1 + high;
}

unsigned char* ExpandHighWord(unsigned char* to, const unsigned char* from) {
  for (size_t i = 0; i < kWord; ++i) {
    to[2 * i] = static_cast<unsigned char>((from[i] >> 6) | 0xC0U);
    to[2 * i + 1] = static_cast<unsigned char>((from[i] & 0x3FU) | 0x80U);
  }
  return to + 2 * kWord;
}

// One character, and no byte beyond it.
unsigned char* ExpandLast(unsigned char* to, unsigned char c) {
  if (c < 0x80) {
    *to = c;
    return to + 1;
  }
  return ExpandOne(to, c);
}

// Converts `length` characters, one at least, into a place with room for twice as many bytes. Returns the end
// of the output; what follows it is as it was.
unsigned char* Expand(unsigned char* to, const unsigned char* from, size_t length) {
  const unsigned char* const last = from + length - 1;
  while (static_cast<size_t>(last - from) >= kWord) {
    const uint64_t word = LoadWord(from);
    const uint64_t high = word & kHighBits;
    if (high == 0) {
      std::memcpy(to, &word, kWord);
      to += kWord;
    } else if (high == kHighBits) {
      to = ExpandHighWord(to, from);
    } else {
      for (size_t i = 0; i < kWord; ++i) to = ExpandOne(to, from[i]);
    }
    from += kWord;
  }
  while (from != last) to = ExpandOne(to, *from++);
  return ExpandLast(to, *last);
}

size_t ExpandedLength(const unsigned char* from, size_t length) {
  size_t result = length;
  size_t i = 0;
  for (; i + kWord <= length; i += kWord) {
    result += static_cast<size_t>(std::popcount(LoadWord(from + i) & kHighBits));
  }
  for (; i < length; ++i) result += from[i] >> 7;
  return result;
}

// The output so far. A null `bytes` only counts.
struct Output {
  unsigned char* bytes;
  size_t size;
  size_t count = 0;

  // Converts the characters; false when the room ended before they did.
  bool Convert(const unsigned char* from, size_t length) {
    if (bytes == nullptr) {
      count += ExpandedLength(from, length);
      return true;
    }
    while (length > 0) {
      const size_t room = count < size ? size - count : 0;
      const size_t safe = length < room / 2 ? length : room / 2;
      if (safe == 0) return ConvertLast(from, length, room);
      count = static_cast<size_t>(Expand(bytes + count, from, safe) - bytes);
      from += safe;
      length -= safe;
    }
    return true;
  }

  void CopyUnchecked(const unsigned char* from, size_t length) {
    if (bytes != nullptr) std::memcpy(bytes + count, from, length);
    count += length;
  }

 private:
  // With room for one byte or none.
  bool ConvertLast(const unsigned char* from, size_t length, size_t room) {
    if (room == 0 || *from >= 0x80) return false;
    bytes[count++] = *from;
    return length == 1;
  }
};

// A section that is kept as it is: from its "!" to behind its "]]". Empty when there is none.
struct Section {
  const unsigned char* begin = nullptr;
  const unsigned char* end = nullptr;
};

Section FindCData(const unsigned char* from, size_t length) {
  const auto* begin = static_cast<const unsigned char*>(memmem(from, length, kCDataStart, kCDataStartLength));
  if (begin == nullptr) return {};
  const auto rest = static_cast<size_t>(from + length - begin);
  const auto* close = static_cast<const unsigned char*>(memmem(begin, rest, "]]", 2));
  return close != nullptr ? Section{begin, close + 2} : Section{};
}

}  // namespace

uint32_t iso_8859_1s_to_utf8s(unsigned char* destination, const unsigned char* source, uint32_t size,
                              bool keepCData) {
  Output output{size > 0 ? destination : nullptr, size};
  const unsigned char* const end = source + std::strlen(reinterpret_cast<const char*>(source));
  bool complete = true;
  while (complete && source != end) {
    const Section section = keepCData ? FindCData(source, static_cast<size_t>(end - source)) : Section{};
    const unsigned char* const stop = section.begin != nullptr ? section.begin : end;
    complete = output.Convert(source, static_cast<size_t>(stop - source));
    source = stop;
    if (complete && section.begin != nullptr) {
      output.CopyUnchecked(section.begin, static_cast<size_t>(section.end - section.begin));
      source = section.end;
    }
  }
  if (complete && output.bytes != nullptr && output.count < output.size) output.bytes[output.count] = '\0';
  return static_cast<uint32_t>(output.count);
}
