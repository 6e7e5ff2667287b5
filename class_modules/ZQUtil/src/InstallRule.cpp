#include "InstallRule.h"

#include <cstring>

bool IsMediaPackage(const std::string& fileName) {
  return strcasestr(fileName.c_str(), "lg__media") != nullptr;
}

bool IsEncryptedPackage(const std::string& fileName) {
  return fileName.starts_with("capp");
}

std::string DecryptedPath(const std::string& path) {
  const size_t place = path.find("capp");
  if (place == std::string::npos) return "app-generic.tgz";
  return std::string(path).erase(place, 1);
}
