// Pieces of the text that a person writes into a device's files. Nothing here allocates or throws.
#ifndef ZQSIM_WORDS_H
#define ZQSIM_WORDS_H

#include <cstddef>
#include <cstdint>
#include <string_view>

constexpr bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

constexpr std::string_view WithoutBlanks(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

// The text before the separator, which is taken off with it; all of it when there is no separator.
constexpr std::string_view TakeUntil(std::string_view& text, char separator) {
  size_t end = text.find(separator);
  if (end == text.npos) end = text.size();
  const std::string_view part(text.data(), end);
  text.remove_prefix(end < text.size() ? end + 1 : end);
  return part;
}

// -1 for what is no hexadecimal digit.
constexpr int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// A decimal number; larger ones are the limit. False, and `number` as it was, for anything else.
constexpr bool ReadDecimal(std::string_view text, uint32_t limit, uint32_t* number) {
  uint64_t value = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') return false;
    value = value * 10 + static_cast<uint64_t>(c - '0');
    if (value > limit) value = limit;
  }
  if (text.empty()) return false;
  *number = static_cast<uint32_t>(value);
  return true;
}

// Pairs of hexadecimal digits, with or without blanks and colons between the pairs, as at most `room` bytes. False
// when something else is there or the room is too small; `bytes` may have changed then, `*length` has not.
constexpr bool ReadHex(std::string_view text, uint8_t* bytes, size_t room, size_t* length) {
  size_t count = 0;
  for (size_t i = 0; i < text.size();) {
    if (IsBlank(text[i]) || text[i] == ':') {
      ++i;
      continue;
    }
    const int high = HexDigit(text[i]);
    const int low = i + 1 < text.size() ? HexDigit(text[i + 1]) : -1;
    if (high < 0 || low < 0 || count == room) return false;
    bytes[count++] = static_cast<uint8_t>(high * 16 + low);
    i += 2;
  }
  *length = count;
  return true;
}

#endif
