// The lines of a file that a person edits: "[title]" and "key = value". What is neither is passed over, and so are
// lines that begin with ";" or "#".
#ifndef ZQSIM_SETTING_LINES_H
#define ZQSIM_SETTING_LINES_H

#include <string_view>

#include "words.h"

class SettingLines {
 public:
  explicit constexpr SettingLines(std::string_view text) : rest_(text) {}

  // Goes to the next line that means something; false when there is none.
  constexpr bool Next() {
    while (!rest_.empty()) {
      std::string_view line = WithoutBlanks(TakeUntil(rest_, '\n'));
      if (line.empty() || line.front() == ';' || line.front() == '#') continue;
      isTitle_ = line.front() == '[' && line.back() == ']';
      if (isTitle_) {
        line.remove_prefix(1);
        line.remove_suffix(1);
        key_ = WithoutBlanks(line);
        return true;
      }
      if (line.find('=') == line.npos) continue;
      key_ = WithoutBlanks(TakeUntil(line, '='));
      value_ = WithoutBlanks(line);
      return true;
    }
    return false;
  }

  constexpr bool IsTitle() const { return isTitle_; }
  constexpr std::string_view Title() const { return key_; }
  constexpr std::string_view Key() const { return key_; }
  constexpr std::string_view Value() const { return value_; }

 private:
  std::string_view rest_;
  std::string_view key_;
  std::string_view value_;
  bool isTitle_ = false;
};

#endif
