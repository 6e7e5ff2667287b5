#include "ResolverFile.h"

#include <strings.h>

#include <algorithm>

namespace {

constexpr std::string_view kKeyword = "nameserver";
constexpr std::string_view kWhite = " \t\n\v\f\r";

std::string_view SkipWhite(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(kWhite), text.size()));
}

std::string_view TrimEnd(std::string_view text) {
  return text.substr(0, text.find_last_not_of(" \r\n") + 1);
}

// "" when the line names none.
std::string_view ServerOf(std::string_view line) {
  line = SkipWhite(line);
  if (line.size() <= kKeyword.size() || strncasecmp(line.data(), kKeyword.data(), kKeyword.size()) != 0)
    return {};
  return TrimEnd(SkipWhite(line.substr(kKeyword.size())));
}

}  // namespace

void ResolverFile::AddLine(std::string_view line) {
  const std::string_view server = ServerOf(line);
  if (server.empty()) return;
  if (count_ < servers_.size()) ++count_;
  servers_[count_ - 1] = server;
}
