#include "lexical_path.h"

bool HasDots(std::string_view path) {
  const char* p = path.data();
  const char* const end = p + path.size();
  for (; p + 1 < end; ++p) {
    if (p[0] != '/') continue;
    if (p[1] == '/') return true;
    if (p[1] != '.') continue;
    const char* after = p + 2;
    if (after < end && *after == '.') ++after;
    if (after == end || *after == '/') return true;
  }
  return false;
}

size_t NormalizePath(std::string_view path, char* buffer, size_t size) {
  size_t length = 0;
  bool folder = false;
  const char* p = path.data();
  const char* const end = p + path.size();
  while (p < end) {
    if (*p == '/') {
      ++p;
      folder = true;
      continue;
    }
    const char* start = p;
    while (p < end && *p != '/') ++p;
    const std::string_view part(start, static_cast<size_t>(p - start));
    folder = part == "." || part == "..";
    if (part == "..") {
      while (length > 0 && buffer[--length] != '/') {
      }
    }
    if (folder) continue;
    if (length + 1 + part.size() > size) return 0;
    buffer[length++] = '/';
    for (const char c : part) buffer[length++] = c;
  }
  if (folder || length == 0) {
    if (length == size) return 0;
    buffer[length++] = '/';
  }
  return length;
}

bool IsAtOrBelow(std::string_view path, std::string_view prefix) {
  return path.starts_with(prefix) && (path.size() == prefix.size() || path[prefix.size()] == '/');
}
