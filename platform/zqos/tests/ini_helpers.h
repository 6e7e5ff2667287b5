// What the tests of settings share.
#ifndef ZQ_INI_HELPERS_H
#define ZQ_INI_HELPERS_H

#include <filesystem>
#include <set>
#include <string>

#include "child_process.h"
#include "zq_ini.h"

// The value as text, "(missing)" without one.
inline std::string Value(const char* section, const char* key, const std::string& file) {
  std::string text(1000, '\0');
  for (;;) {
    const size_t count =
        zq_GetINIFileString(section, key, "(missing)", text.data(), text.size(), file.c_str());
    if (count < text.size()) return text.substr(0, count);
    text.resize(text.size() * 40);
  }
}

inline bool Set(const char* section, const char* key, const std::string& value, const std::string& file,
                bool durable = false) {
  return zq_WriteINIFileString(section, key, value.c_str(), file.c_str(), durable);
}

inline std::set<std::string> NamesIn(const std::filesystem::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) names.insert(entry.path().filename());
  return names;
}

#endif
