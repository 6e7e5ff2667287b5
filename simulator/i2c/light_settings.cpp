#include "light_settings.h"

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr uint32_t kLongestTransferUs = 1000000;

std::string_view Trim(std::string_view text) {
  while (!text.empty() && kBlanks.find(text.front()) != kBlanks.npos) text.remove_prefix(1);
  while (!text.empty() && kBlanks.find(text.back()) != kBlanks.npos) text.remove_suffix(1);
  return text;
}

// The text before the separator, which is taken off with it.
std::string_view Take(std::string_view& text, char separator) {
  size_t end = text.find(separator);
  if (end == text.npos) end = text.size();
  const std::string_view part(text.data(), end);
  text.remove_prefix(end < text.size() ? end + 1 : end);
  return part;
}

int Digit(char c, int base) {
  const int digit = c >= '0' && c <= '9' ? c - '0' : (c | 0x20) >= 'a' ? (c | 0x20) - 'a' + 10 : base;
  return digit < base ? digit : -1;
}

// Larger numbers are the limit. False, and `number` as it was, for what is no number.
bool ReadNumber(std::string_view text, uint32_t limit, uint32_t* number) {
  int base = 10;
  if (text.starts_with("0x") || text.starts_with("0X")) {
    base = 16;
    text.remove_prefix(2);
  }
  if (text.empty()) return false;
  uint64_t value = 0;
  for (const char c : text) {
    const int digit = Digit(c, base);
    if (digit < 0) return false;
    value = value * static_cast<uint64_t>(base) + static_cast<uint64_t>(digit);
    if (value > limit) value = limit;
  }
  *number = static_cast<uint32_t>(value);
  return true;
}

void SetReady(std::string_view value, LightSettings* settings) {
  if (value == "at once") settings->notReady = 0;
  if (value == "never") settings->notReady = LightSettings::kNever;
  if (!value.starts_with("after ")) return;
  value.remove_prefix(6);
  if (value.ends_with("reads")) value.remove_suffix(5);
  ReadNumber(Trim(value), LightSettings::kNever - 1, &settings->notReady);
}

void Set(std::string_view key, std::string_view value, LightSettings* settings) {
  if (key == "ready") SetReady(value, settings);
  if (key == "transfers" && (value == "work" || value == "fail")) settings->fails = value == "fail";
  if (key == "transfer_us") ReadNumber(value, kLongestTransferUs, &settings->transferUs);
  uint32_t address = 0;
  if (key == "address" && ReadNumber(value, 0xFF, &address))
    settings->address = static_cast<uint8_t>(address);
}

}  // namespace

LightSettings ParseLightSettings(std::string_view text) {
  LightSettings settings;
  while (!text.empty()) {
    std::string_view line = Trim(Take(text, '\n'));
    if (line.starts_with(';') || line.starts_with('#')) continue;
    const std::string_view key = Trim(Take(line, '='));
    Set(key, Trim(line), &settings);
  }
  return settings;
}

bool ParseLightReading(std::string_view text, uint16_t* reading) {
  uint32_t number = 0;
  text = Trim(text);
  if (text.starts_with("0x") || text.starts_with("0X") || !ReadNumber(text, UINT16_MAX, &number))
    return false;
  *reading = static_cast<uint16_t>(number);
  return true;
}
