// One line of an INI file, taken apart without a copy.
#ifndef ZQ_INI_LINE_H
#define ZQ_INI_LINE_H

#include <cstddef>
#include <string_view>

// [NAME] opens a section, also when the bracket is not closed; NAME = VALUE is a setting; a comment begins
// with ";" or "#". What is none of these, nor blank, is kept and means nothing.
enum class IniLineKind { kBlank, kComment, kSection, kSetting, kOther };

struct IniLine {
  IniLineKind kind;
  std::string_view name;  // of the section or the setting, trimmed; may be empty for a section
  // The value as it stands in the file, trimmed, and its place in the line; of settings only.
  std::string_view value;
  size_t valueStart;
};

// `text` is the line without its "\n".
IniLine ParseIniLine(std::string_view text);

// Behind the byte order mark that the text may begin with.
size_t IniTextStart(std::string_view bytes);

// Goes over the lines of a text.
class IniLines {
 public:
  explicit IniLines(std::string_view bytes);
  // False after the last line. The text after the last "\n" is a line when there is any.
  bool Next();

  size_t Start() const { return start_; }
  // Behind the line and its end.
  size_t End() const { return end_; }
  const IniLine& Line() const { return line_; }

 private:
  std::string_view bytes_;
  size_t start_ = 0;
  size_t end_;
  IniLine line_{};
};

#endif
