#include "file_pattern.h"

#include <fnmatch.h>

#include <clocale>

FilePattern SplitPattern(const std::string& pattern) {
  const size_t slash = pattern.rfind('/');
  if (slash == std::string::npos) return {".", pattern};
  return {slash == 0 ? "/" : pattern.substr(0, slash), pattern.substr(slash + 1)};
}

bool NameMatches(const std::string& names, const char* name) {
  if (names == "*") return true;
  const int result = fnmatch(names.c_str(), name, 0);
  if (result == 0 || result == FNM_NOMATCH) return result == 0;
  // No text in this locale: byte by byte then.
  static const locale_t bytes = newlocale(LC_ALL_MASK, "C", nullptr);
  const locale_t before = uselocale(bytes);
  const bool matches = fnmatch(names.c_str(), name, 0) == 0;
  uselocale(before);
  return matches;
}
