#include "xml_text.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace {

constexpr std::string_view kEntities[] = {"amp", "lt", "gt", "quot", "apos"};
constexpr uint32_t kHighestCharacter = 0x10ffff;

bool IsCharacter(uint32_t code) {
  if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
  return code <= kHighestCharacter && (code < 0xd800 || code > 0xdfff) && code != 0xfffe && code != 0xffff;
}

// What stands between "&#" and ";".
bool IsCharacterNumber(std::string_view text) {
  const bool hexadecimal = text.starts_with('x');
  if (hexadecimal) text.remove_prefix(1);
  uint32_t code = 0;
  const auto [end, error] = std::from_chars(text.begin(), text.end(), code, hexadecimal ? 16 : 10);
  return error == std::errc() && end == text.end() && IsCharacter(code);
}

bool IsReference(std::string_view text) {
  if (text.starts_with('#')) return IsCharacterNumber(text.substr(1));
  return std::find(std::begin(kEntities), std::end(kEntities), text) != std::end(kEntities);
}

bool StartsName(unsigned char byte) {
  const unsigned char lower = byte | 0x20;
  return (lower >= 'a' && lower <= 'z') || byte == '_' || byte == ':' || byte >= 0x80;
}

bool ContinuesName(unsigned char byte) {
  return StartsName(byte) || (byte >= '0' && byte <= '9') || byte == '-' || byte == '.';
}

}  // namespace

bool IsName(std::string_view name) {
  return !name.empty() && StartsName(name.front()) && std::all_of(name.begin(), name.end(), ContinuesName);
}

bool IsText(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](unsigned char byte) { return byte >= 0x20 ? byte != 0x7f : IsCharacter(byte); });
}

bool IsEscapedText(std::string_view text) {
  if (!IsText(text) || text.find('<') != text.npos || text.find("]]>") != text.npos) return false;
  for (size_t at = text.find('&'); at != text.npos; at = text.find('&', at + 1)) {
    const size_t end = text.find(';', at);
    if (end == text.npos || !IsReference(text.substr(at + 1, end - at - 1))) return false;
  }
  return true;
}
