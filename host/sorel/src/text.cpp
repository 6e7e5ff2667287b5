#include "text.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace sorel {
namespace {

struct Character {
  char32_t code;
  size_t bytes;  // 0: no UTF-8 character begins here
};

bool IsContinuation(char byte) {
  return (static_cast<uint8_t>(byte) & 0xC0) == 0x80;
}

Character NextCharacter(std::string_view bytes) {
  const auto lead = static_cast<uint8_t>(bytes.front());
  if (lead < 0x80) return {lead, 1};
  const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || bytes.size() < length) return {0, 0};
  char32_t code = lead & (0xFFU >> (length + 1));
  for (size_t i = 1; i < length; ++i) {
    if (!IsContinuation(bytes[i])) return {0, 0};
    code = (code << 6) | (static_cast<uint8_t>(bytes[i]) & 0x3FU);
  }
  constexpr std::array<char32_t, 5> kLeast = {0, 0, 0x80, 0x800, 0x10000};
  const bool valid = code >= kLeast.at(length) && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
  return valid ? Character{code, length} : Character{0, 0};
}

void AppendUtf16(std::u16string& text, char32_t code) {
  if (code < 0x10000) {
    text.push_back(static_cast<char16_t>(code));
    return;
  }
  text.push_back(static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10)));
  text.push_back(static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF)));
}

void AppendUtf8(std::string& bytes, char32_t code) {
  const auto tail = [code](int shift) { return static_cast<char>(0x80 | ((code >> shift) & 0x3F)); };
  if (code < 0x80) {
    bytes.push_back(static_cast<char>(code));
  } else if (code < 0x800) {
    bytes += {static_cast<char>(0xC0 | (code >> 6)), tail(0)};
  } else if (code < 0x10000) {
    bytes += {static_cast<char>(0xE0 | (code >> 12)), tail(6), tail(0)};
  } else {
    bytes += {static_cast<char>(0xF0 | (code >> 18)), tail(12), tail(6), tail(0)};
  }
}

bool IsLead(char16_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsTrail(char16_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

}  // namespace

bool IsAscii(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return static_cast<uint8_t>(byte) < 0x80; });
}

bool IsUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const Character character = NextCharacter(bytes);
    if (character.bytes == 0) return false;
    bytes.remove_prefix(character.bytes);
  }
  return true;
}

std::u16string DecodeLenient(std::string_view bytes) {
  std::u16string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const Character character = NextCharacter(bytes);
    if (character.bytes == 0) {
      text.push_back(static_cast<uint8_t>(bytes.front()));
      bytes.remove_prefix(1);
    } else {
      AppendUtf16(text, character.code);
      bytes.remove_prefix(character.bytes);
    }
  }
  return text;
}

std::string EncodeUtf8(std::u16string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i];
    if (IsLead(unit) && i + 1 < text.size() && IsTrail(text[i + 1])) {
      ++i;
      AppendUtf8(bytes, 0x10000 + ((unit - 0xD800U) << 10) + (text[i] - 0xDC00U));
    } else {
      AppendUtf8(bytes, IsLead(unit) || IsTrail(unit) ? U'\uFFFD' : unit);
    }
  }
  return bytes;
}

}  // namespace sorel
