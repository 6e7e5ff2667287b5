#include "VersionTexts.h"

namespace {

constexpr std::string_view kPlatformPrefix = "Brimvale Version: 1.0.000 ";

}  // namespace

std::string_view VersionLine(std::string_view text) {
  return text.substr(0, text.find_first_of("\n\r\t"));
}

std::string FirmwareVersionText(const std::optional<std::string>& file, int32_t boardRevision,
                                int32_t deviceId) {
  if (!file) return "";
  std::string text(VersionLine(*file));
  if (boardRevision > 0) text += " (boardrev: " + std::to_string(boardRevision) + ")";
  if (deviceId > 0) text += " [ID=" + std::to_string(deviceId) + "]";
  return text;
}

std::string SoftwareVersionText(const std::optional<std::string>& file, std::string_view platform) {
  const std::string_view line = file ? VersionLine(*file) : std::string_view();
  std::string text(line.empty() ? platform : line);
  if (!line.empty()) text.append(" (").append(platform).append(")");
  return text;
}

std::string_view PlatformVersionLine(std::string_view version) {
  if (version.starts_with(kPlatformPrefix)) version.remove_prefix(kPlatformPrefix.size());
  return version;
}
