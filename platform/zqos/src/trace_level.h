// The text of $ZQ_TRACE_LEVEL.
#ifndef ZQOS_TRACE_LEVEL_H
#define ZQOS_TRACE_LEVEL_H

#include <charconv>
#include <optional>
#include <string_view>

// The number that the whole text is; nothing for any other text, also for one that does not fit in an int.
inline std::optional<int> TraceLevelFromText(std::string_view text) {
  int level = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), level);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return level;
}

#endif
