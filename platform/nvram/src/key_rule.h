// Which keys can be stored.
#ifndef ZQ_NVRAM_KEY_RULE_H
#define ZQ_NVRAM_KEY_RULE_H

#include <string>
#include <string_view>

// Why the key cannot be stored, or "".
inline std::string JudgeKey(std::string_view key) {
  if (key.empty()) return "the key is empty";
  if (key.find('=') != std::string_view::npos) return "the key has a \"=\"";
  if (key.find_first_of("\r\n") != std::string_view::npos) return "the key has a line break";
  // Where boot loaders keep types and permissions of the others.
  if (key == ".flags") return "the key is reserved";
  return {};
}

#endif
