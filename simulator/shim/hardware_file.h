// The files in the device's folder hw/, by which a person sees and changes its hardware. No hook is in the way of
// these calls. Names begin with "/hw/".
#ifndef ZQSIM_HARDWARE_FILE_H
#define ZQSIM_HARDWARE_FILE_H

#include <cstddef>
#include <cstdint>
#include <string_view>

// The file's start, at most `size` bytes; 0 when there is none, and without a device.
size_t ReadHardware(const char* name, char* buffer, size_t size);
bool HasHardware(const char* name);
// When a file's content last changed, in nanoseconds since 1970; kNoFile when there is none.
constexpr int64_t kNoFile = INT64_MIN;
int64_t HardwareChangedAt(const char* name);
// The same of a place on this machine.
int64_t FileChangedAt(const char* place);
// Puts the text in the file's place at once, so that a reader sees the old text or the new one. False on failure.
bool ReplaceHardware(const char* name, std::string_view text);
// Adds the file or folder to an inotify descriptor. False when it is not there.
bool WatchHardware(int watch, const char* name, uint32_t events);
// Adds to a file's end, in one write; nothing happens when there is no such file.
void AppendHardware(const char* name, std::string_view text);

#endif
