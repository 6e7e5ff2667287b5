// A device's root folder: recognised, made, refused.
#ifndef ZQSIM_DEVICE_FOLDER_H
#define ZQSIM_DEVICE_FOLDER_H

#include <filesystem>
#include <string>

// Makes the folder a device from the profile when it is missing or empty; a device that is there already is
// left as it is. Processes that do this at once for one folder take turns. A folder with the file .zq-device
// or a folder etc is a device; any other that is not empty is refused. True: `root` is its canonical path.
// False: `error` says what is wrong and where, in one line.
bool PrepareDevice(const std::filesystem::path& folder, const std::filesystem::path& profile,
                   std::filesystem::path& root, std::string& error);

// The profile that the device was made from; "" when nothing says so.
std::string ProfileOf(const std::filesystem::path& root);

#endif
