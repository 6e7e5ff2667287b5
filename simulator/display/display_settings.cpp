#include "display_settings.h"

#include <cstring>

namespace {

constexpr std::string_view kBlanks = " \t\r";

// substr would want the C++ library, for the exception that it throws.
std::string_view Slice(std::string_view text, size_t begin, size_t end) {
  return {text.data() + begin, (end < text.size() ? end : text.size()) - begin};
}

std::string_view WithoutBlanks(std::string_view text) {
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == text.npos) return Slice(text, text.size(), text.size());
  return Slice(text, first, text.find_last_not_of(kBlanks) + 1);
}

// The first value of the key, a part of `text`; its data is null when the key is missing.
std::string_view ValueOf(std::string_view text, std::string_view key) {
  for (size_t begin = 0; begin < text.size();) {
    const size_t end = text.find('\n', begin);
    const std::string_view line = Slice(text, begin, end);
    const size_t equals = line.find('=');
    if (equals != line.npos && WithoutBlanks(Slice(line, 0, equals)) == key) {
      return WithoutBlanks(Slice(line, equals + 1, line.size()));
    }
    if (end == text.npos) break;
    begin = end + 1;
  }
  return {};
}

void SetServer(std::string_view value, DisplayServer* server) {
  if (value == "none") *server = DisplayServer::kNone;
  if (value == "simulated") *server = DisplayServer::kSimulated;
  if (value == "real") *server = DisplayServer::kReal;
}

void SetFlag(std::string_view value, std::string_view yes, std::string_view no, bool* flag) {
  if (value == yes || value == no) *flag = value == yes;
}

// Seconds as the server counts them, at most 65535. False for what is no number.
bool ReadSeconds(std::string_view text, uint16_t* seconds) {
  uint32_t value = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') return false;
    value = value * 10 + static_cast<uint32_t>(c - '0');
    if (value > UINT16_MAX) value = UINT16_MAX;
  }
  *seconds = static_cast<uint16_t>(value);
  return !text.empty();
}

// All three, or none.
void SetTimeouts(std::string_view value, uint16_t* timeouts) {
  uint16_t read[3];
  for (int i = 0; i < 3; ++i) {
    const size_t comma = i < 2 ? value.find(',') : value.size();
    if (comma == value.npos || !ReadSeconds(WithoutBlanks(Slice(value, 0, comma)), &read[i])) return;
    value.remove_prefix(i < 2 ? comma + 1 : comma);
  }
  memcpy(timeouts, read, sizeof(read));
}

// Copies as much as there is room for; false when that was not all.
bool Append(std::string_view part, char* out, size_t size, size_t* length) {
  if (part.size() > size - *length) return false;
  if (!part.empty()) memcpy(out + *length, part.data(), part.size());
  *length += part.size();
  return true;
}

}  // namespace

DisplaySettings ParseDisplaySettings(std::string_view text) {
  DisplaySettings settings;
  SetServer(ValueOf(text, "server"), &settings.server);
  SetFlag(ValueOf(text, "extension"), "yes", "no", &settings.extension);
  SetFlag(ValueOf(text, "capable"), "works", "fails", &settings.capable);
  SetFlag(ValueOf(text, "enable"), "works", "fails", &settings.enable);
  SetFlag(ValueOf(text, "get_timeouts"), "works", "fails", &settings.getTimeouts);
  SetFlag(ValueOf(text, "set_timeouts"), "works", "fails", &settings.setTimeouts);
  SetFlag(ValueOf(text, "force_level"), "works", "fails", &settings.forceLevel);
  SetTimeouts(ValueOf(text, "timeouts"), settings.timeouts);
  return settings;
}

size_t ReplaceDisplayValue(std::string_view text, std::string_view key, std::string_view value, char* out,
                           size_t size) {
  const std::string_view old = ValueOf(text, key);
  size_t length = 0;
  bool fits = true;
  const auto add = [&](std::string_view part) { fits = fits && Append(part, out, size, &length); };
  if (old.data() == nullptr) {
    add(text);
    if (!text.empty() && text.back() != '\n') add("\n");
    for (const std::string_view part : {key, std::string_view(" = "), value, std::string_view("\n")})
      add(part);
  } else {
    const size_t before = static_cast<size_t>(old.data() - text.data());
    add(Slice(text, 0, before));
    add(value);
    add(Slice(text, before + old.size(), text.size()));
  }
  return fits ? length : 0;
}
