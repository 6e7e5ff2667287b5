#include "radio_settings.h"

#include <cerrno>

#include "error_name.h"

namespace {

constexpr uint32_t kLongestWaitMs = 3600000;

void SetFlag(std::string_view value, bool* flag) {
  if (value == "yes" || value == "no") *flag = value == "yes";
}

void SetByte(std::string_view value, uint32_t limit, std::optional<uint8_t>* byte) {
  uint32_t number = 0;
  if (ReadDecimal(value, limit, &number)) *byte = static_cast<uint8_t>(number);
}

void SetLink(std::string_view key, std::string_view value, RadioSettings* settings) {
  if (key == "up") SetFlag(value, &settings->up);
  if (key == "associated") SetFlag(value, &settings->associated);
  if (key == "essid") settings->essid.Set(value);
  if (key == "essid_hex") settings->essid.SetHex(value);
  if (key == "level") SetByte(value, UINT8_MAX, &settings->level);
  if (key == "quality") SetByte(value, 100, &settings->quality);
}

void SetError(std::string_view key, std::string_view value, RadioSettings* settings) {
  constexpr std::string_view kKeys[kRadioRequests] = {"range",      "scan_type", "scan", "results",
                                                      "statistics", "status",    "name"};
  for (size_t i = 0; i < kRadioRequests; ++i) {
    if (key == kKeys[i]) ReadErrorName(value, &settings->errors[i]);
  }
}

void SetDriver(std::string_view key, std::string_view value, RadioSettings* settings) {
  SetError(key, value, settings);
  uint32_t version = 0;
  if (key == "version" && ReadDecimal(value, UINT8_MAX, &version)) {
    settings->form.version = static_cast<uint8_t>(version);
  }
  if (key == "layout" && (value == "32" || value == "64")) settings->form.wide = value == "64";
  if (key == "results_ms") ReadDecimal(value, kLongestWaitMs, &settings->resultsMs);
  if (key == "wants_bytes") ReadDecimal(value, UINT32_MAX, &settings->wantsBytes);
  if (key == "tells_length") SetFlag(value, &settings->tellsLength);
  if (key != "elements") return;
  if (value == "events") settings->elements = ElementsForm::kEvents;
  if (value == "together") settings->elements = ElementsForm::kTogether;
  if (value == "texts") settings->elements = ElementsForm::kTexts;
}

}  // namespace

int RadioSettings::Error(RadioRequest request) const {
  const int wanted = errors[static_cast<size_t>(request)];
  const bool scans = request == RadioRequest::kScan || request == RadioRequest::kResults;
  return wanted == 0 && scans && !up ? ENETDOWN : wanted;
}

RadioSettings ParseRadioSettings(std::string_view text) {
  RadioSettings settings;
  std::string_view section;
  for (SettingLines lines(text); lines.Next();) {
    if (lines.IsTitle()) {
      section = lines.Title();
    } else if (section == "link") {
      SetLink(lines.Key(), lines.Value(), &settings);
    } else if (section == "driver") {
      SetDriver(lines.Key(), lines.Value(), &settings);
    }
  }
  return settings;
}
