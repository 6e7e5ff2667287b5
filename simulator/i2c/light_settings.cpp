#include "light_settings.h"

#include "setting_lines.h"

namespace {

constexpr uint32_t kLongestTransferUs = 1000000;

// Hexadecimal behind "0x"; larger numbers are 255. False, and the address as it was, for what is no number.
bool ReadAddress(std::string_view text, uint8_t* address) {
  uint32_t number = 0;
  if (!text.starts_with("0x") && !text.starts_with("0X")) {
    if (!ReadDecimal(text, UINT8_MAX, &number)) return false;
  } else {
    text.remove_prefix(2);
    if (text.empty()) return false;
    for (const char c : text) {
      const int digit = HexDigit(c);
      if (digit < 0) return false;
      number = number * 16 + static_cast<uint32_t>(digit);
      if (number > UINT8_MAX) number = UINT8_MAX;
    }
  }
  *address = static_cast<uint8_t>(number);
  return true;
}

void SetReady(std::string_view value, LightSettings* settings) {
  if (value == "at once") settings->notReady = 0;
  if (value == "never") settings->notReady = LightSettings::kNever;
  if (!value.starts_with("after ")) return;
  value.remove_prefix(6);
  if (value.ends_with("reads")) value.remove_suffix(5);
  ReadDecimal(WithoutBlanks(value), LightSettings::kNever - 1, &settings->notReady);
}

void Set(std::string_view key, std::string_view value, LightSettings* settings) {
  if (key == "ready") SetReady(value, settings);
  if (key == "transfers" && (value == "work" || value == "fail")) settings->fails = value == "fail";
  if (key == "transfer_us") ReadDecimal(value, kLongestTransferUs, &settings->transferUs);
  if (key == "address") ReadAddress(value, &settings->address);
}

}  // namespace

LightSettings ParseLightSettings(std::string_view text) {
  LightSettings settings;
  for (SettingLines lines(text); lines.Next();) {
    if (!lines.IsTitle()) Set(lines.Key(), lines.Value(), &settings);
  }
  return settings;
}

bool ParseLightReading(std::string_view text, uint16_t* reading) {
  uint32_t number = 0;
  if (!ReadDecimal(WithoutBlanks(text), UINT16_MAX, &number)) return false;
  *reading = static_cast<uint16_t>(number);
  return true;
}
