#include "display_settings.h"

#include <cstring>

#include "setting_lines.h"

namespace {

// substr would want the C++ library, for the exception that it throws.
std::string_view Slice(std::string_view text, size_t begin, size_t end) {
  return {text.data() + begin, (end < text.size() ? end : text.size()) - begin};
}

// The first value of the key, a part of `text`; its data is null when the key is missing.
std::string_view ValueOf(std::string_view text, std::string_view key) {
  for (SettingLines lines(text); lines.Next();) {
    if (!lines.IsTitle() && lines.Key() == key) return lines.Value();
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

// Seconds as the server counts them, at most 65535. All three, or none.
void SetTimeouts(std::string_view value, uint16_t* timeouts) {
  uint16_t read[3];
  for (uint16_t& seconds : read) {
    uint32_t number = 0;
    const bool last = &seconds == &read[2];
    const std::string_view text = last ? value : TakeUntil(value, ',');
    if (!ReadDecimal(WithoutBlanks(text), UINT16_MAX, &number)) return;
    seconds = static_cast<uint16_t>(number);
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
