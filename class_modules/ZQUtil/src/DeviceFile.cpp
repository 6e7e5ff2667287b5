#include "DeviceFile.h"

#include <cstdio>
#include <exception>
#include <memory>

std::optional<std::string> ReadDeviceFile(const char* path) try {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path, "re"), std::fclose);
  if (file == nullptr) return std::nullopt;
  std::string text;
  char block[4096];
  while (const size_t read = std::fread(block, 1, sizeof block, file.get())) {
    if (text.size() + read > kMostDeviceFileBytes) return std::nullopt;
    text.append(block, read);
  }
  if (std::ferror(file.get()) != 0) return std::nullopt;
  const size_t end = text.find('\0');
  if (end != std::string::npos) text.resize(end);
  return text;
} catch (const std::exception&) {
  return std::nullopt;
}
