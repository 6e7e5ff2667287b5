#include "ini_line.h"

#include <algorithm>

#include "ini_value.h"

size_t IniTextStart(std::string_view bytes) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  return bytes.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
}

IniLine ParseIniLine(std::string_view text) {
  const std::string_view trimmed = IniTrim(text);
  if (trimmed.empty()) return {IniLineKind::kBlank, {}, {}, 0};
  if (trimmed.front() == ';' || trimmed.front() == '#') return {IniLineKind::kComment, {}, {}, 0};
  if (trimmed.front() == '[') {
    return {IniLineKind::kSection, IniTrim(trimmed.substr(1, trimmed.find(']', 1) - 1)), {}, 0};
  }
  const size_t equals = trimmed.find('=');
  if (equals == std::string_view::npos || equals == 0) return {IniLineKind::kOther, {}, {}, 0};
  const std::string_view value = IniTrim(trimmed.substr(equals + 1));
  const auto place =
      static_cast<size_t>((value.empty() ? trimmed.data() + trimmed.size() : value.data()) - text.data());
  return {IniLineKind::kSetting, IniTrim(trimmed.substr(0, equals)), value, place};
}

IniLines::IniLines(std::string_view bytes) : bytes_(bytes), end_(IniTextStart(bytes)) {}

bool IniLines::Next() {
  if (end_ == bytes_.size()) return false;
  start_ = end_;
  const size_t lineBreak = bytes_.find('\n', start_);
  const bool last = lineBreak == std::string_view::npos;
  end_ = last ? bytes_.size() : lineBreak + 1;
  line_ = ParseIniLine(bytes_.substr(start_, (last ? end_ : lineBreak) - start_));
  return true;
}
