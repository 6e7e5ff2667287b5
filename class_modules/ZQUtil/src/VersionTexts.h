// What the version files' texts make of the device's versions, as users see them. No file is touched here.
#ifndef ZQUTIL_VERSION_TEXTS_H
#define ZQUTIL_VERSION_TEXTS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The text up to its first line break or tab.
std::string_view VersionLine(std::string_view text);

// "2.1.7", with " (boardrev: 3)" for a board revision greater than 0, and " [ID=42]" for a device identity greater than
// 0. "" without the firmware's file.
std::string FirmwareVersionText(const std::optional<std::string>& file, int32_t boardRevision,
                                int32_t deviceId);

// "R12 (5.4)", software and platform. The platform's alone when the file is missing or its line is empty.
std::string SoftwareVersionText(const std::optional<std::string>& file, std::string_view platform);

// The platform's version without the prefix that some releases of it put before theirs.
std::string_view PlatformVersionLine(std::string_view version);

#endif
