// Which packages this device can install, and how.
#ifndef ZQUTIL_INSTALL_RULE_H
#define ZQUTIL_INSTALL_RULE_H

#include <cstdint>
#include <string>

enum class Install {
  kNot,    // the device cannot
  kApply,  // the package is unpacked and its run script started
  kCopy    // the package is put where the system's updater finds it
};

//   boot loader   partitions      install
//   above 0       4               kApply
//   0             2 or 4          kCopy
//   anything else                 kNot
constexpr Install InstallFor(int32_t bootloaderVersion, int32_t partitions) {
  if (bootloaderVersion > 0 && partitions == 4) return Install::kApply;
  if (bootloaderVersion == 0 && (partitions == 2 || partitions == 4)) return Install::kCopy;
  return Install::kNot;
}

// A package of media is applied on every device.
bool IsMediaPackage(const std::string& fileName);
// By its name alone: such packages begin with "capp".
bool IsEncryptedPackage(const std::string& fileName);
// Where the package at `path` is decrypted to: the same path without the "c" of its first "capp".
std::string DecryptedPath(const std::string& path);

#endif
