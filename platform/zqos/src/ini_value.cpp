#include "ini_value.h"

#include <algorithm>
#include <limits>

namespace {

constexpr std::string_view kBlanks = " \t\r\v\f";

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// The letter after the backslash and the character it stands for.
struct Escape {
  char letter;
  char character;
};
constexpr Escape kEscapes[] = {{'n', '\n'}, {'r', '\r'}, {'t', '\t'}, {'"', '"'}, {'\\', '\\'}};

bool NeedsQuotes(std::string_view value) {
  if (value.empty()) return false;
  return IniTrim(value).size() != value.size() || value.front() == '"' ||
         value.find_first_of("\r\n") != std::string_view::npos;
}

bool IsContinuation(char c) {
  return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

// Bytes of the UTF-8 character that this byte begins; 1 when it begins none of several bytes.
size_t CharacterSize(char lead) {
  const auto byte = static_cast<unsigned char>(lead);
  if (byte >= 0xC2 && byte <= 0xDF) return 2;
  if (byte >= 0xE0 && byte <= 0xEF) return 3;
  if (byte >= 0xF0 && byte <= 0xF4) return 4;
  return 1;
}

}  // namespace

std::string_view IniTrim(std::string_view text) {
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return text.substr(0, 0);
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool IniSameName(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, [](char x, char y) { return Lower(x) == Lower(y); });
}

std::string IniQuote(std::string_view value) {
  if (!NeedsQuotes(value)) return std::string(value);
  std::string text = "\"";
  for (const char c : value) {
    const auto* escape = std::ranges::find(kEscapes, c, &Escape::character);
    if (escape == std::end(kEscapes)) {
      text += c;
    } else {
      text += {'\\', escape->letter};
    }
  }
  return text + '"';
}

std::string IniUnquote(std::string_view text) {
  if (text.size() < 2 || text.front() != '"' || text.back() != '"') return std::string(text);
  const std::string_view inner = text.substr(1, text.size() - 2);
  std::string value;
  for (size_t i = 0; i < inner.size(); ++i) {
    if (inner[i] == '"') return std::string(text);
    if (inner[i] != '\\') {
      value += inner[i];
      continue;
    }
    // The quote at the end belongs to this backslash, so nothing closes the value.
    if (i + 1 == inner.size()) return std::string(text);
    const auto* escape = std::ranges::find(kEscapes, inner[i + 1], &Escape::letter);
    if (escape == std::end(kEscapes)) {
      value += '\\';
      continue;
    }
    value += escape->character;
    ++i;
  }
  return value;
}

std::optional<int32_t> IniNumber(std::string_view value) {
  constexpr int64_t kMin = std::numeric_limits<int32_t>::min();
  constexpr int64_t kMax = std::numeric_limits<int32_t>::max();
  std::string_view text = IniTrim(value);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  if (text.empty() || !IsDigit(text.front())) return std::nullopt;
  int64_t number = 0;
  for (const char c : text) {
    if (!IsDigit(c)) break;
    // One above the greatest magnitude is enough to know that it is out of range.
    number = std::min(number * 10 + (c - '0'), kMax + 2);
  }
  return static_cast<int32_t>(std::clamp(negative ? -number : number, kMin, kMax));
}

bool IniAffirmative(std::string_view value) {
  constexpr std::string_view kWords[] = {"yes", "true", "on", "1"};
  return std::ranges::any_of(kWords, [value](std::string_view word) { return IniSameName(value, word); });
}

size_t IniCut(std::string_view text, size_t size) {
  if (text.size() <= size) return text.size();
  size_t lead = size;
  while (lead > 0 && size - lead < 3 && IsContinuation(text[lead - 1])) --lead;
  if (lead == 0) return size;
  const std::string_view character = text.substr(lead - 1, CharacterSize(text[lead - 1]));
  const bool whole = character.size() == CharacterSize(text[lead - 1]) &&
                     std::ranges::all_of(character.substr(1), IsContinuation);
  return whole && lead - 1 + character.size() > size ? lead - 1 : size;
}
