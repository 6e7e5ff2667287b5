// The calls of zq_ini.h over files and documents. No exception (there may be no memory) leaves them.
#include <cstring>
#include <exception>
#include <optional>
#include <string>

#include "ini_file.h"
#include "ini_value.h"
#include "platform_trace.h"
#include "zq_ini.h"

namespace {

const char* OrEmpty(const char* text) {
  return text != nullptr ? text : "";
}

std::optional<std::string> Read(const char* section, const char* key, const char* file) {
  if (key == nullptr || file == nullptr) return std::nullopt;
  try {
    std::optional<std::string> bytes = ReadIniFile(IniFilePath(file));
    if (!bytes) return std::nullopt;
    return IniDocument(std::move(*bytes)).Get(OrEmpty(section), key);
  } catch (const std::exception& error) {
    PlatformFailure("INI: cannot read %s: %s", file, error.what());
    return std::nullopt;
  }
}

}  // namespace

int32_t zq_GetINIFileInt(const char* section, const char* key, int32_t fallback, const char* file) {
  const std::optional<std::string> value = Read(section, key, file);
  return value ? IniNumber(*value).value_or(fallback) : fallback;
}

size_t zq_GetINIFileString(const char* section, const char* key, const char* fallback, char* buffer,
                           size_t size, const char* file) {
  if (buffer == nullptr) return 0;
  const std::optional<std::string> value = Read(section, key, file);
  const std::string_view text = value ? std::string_view(*value) : OrEmpty(fallback);
  const size_t count = IniCut(text, size);
  memcpy(buffer, text.data(), count);
  if (count < size) buffer[count] = '\0';
  return count;
}

bool zq_GetINIFileAffirmative(const char* section, const char* key, const char* fallback, const char* file) {
  const std::optional<std::string> value = Read(section, key, file);
  return IniAffirmative(value ? std::string_view(*value) : OrEmpty(fallback));
}

bool zq_WriteINIFileString(const char* section, const char* key, const char* value, const char* file,
                           bool durable) {
  if (section == nullptr || key == nullptr || value == nullptr || file == nullptr) {
    PlatformFailure("INI: a write needs section, key, value and file");
    return false;
  }
  try {
    return ChangeIniFile(
        IniFilePath(file), [=](IniDocument& document) { return document.Set(section, key, value); }, durable);
  } catch (const std::exception& error) {
    PlatformFailure("INI: cannot write %s: %s", file, error.what());
    return false;
  }
}

bool zq_WriteINIFileInt(const char* section, const char* key, int32_t value, const char* file, bool durable) {
  return zq_WriteINIFileString(section, key, std::to_string(value).c_str(), file, durable);
}

bool zq_INIFilePath(const char* file, char* path, size_t size) {
  if (path == nullptr || size == 0) return false;
  path[0] = '\0';
  if (OrEmpty(file)[0] == '\0') return false;
  try {
    const std::string found = IniFilePath(file);
    if (found.size() >= size) return false;
    memcpy(path, found.c_str(), found.size() + 1);
    return true;
  } catch (const std::exception&) {
    return false;
  }
}
