// Small text files of the device, read whole.
#ifndef ZQUTIL_DEVICE_FILE_H
#define ZQUTIL_DEVICE_FILE_H

#include <optional>
#include <string>

// The text up to its first NUL. Nothing when the file cannot be opened or read to its end: a folder, or more than
// kMostDeviceFileBytes. Any thread.
std::optional<std::string> ReadDeviceFile(const char* path);

// Far more than any such file has, far less than would starve the device.
constexpr size_t kMostDeviceFileBytes = size_t{16} * 1024 * 1024;

#endif
