#include "ini_document.h"

#include "ini_line.h"
#include "ini_value.h"

namespace {

// Where a new setting of a section goes, told line by line.
class SectionEnd {
 public:
  explicit SectionEnd(size_t headEnd) : last_(headEnd) {}

  void Pass(IniLineKind kind, size_t end) {
    if (kind == IniLineKind::kBlank) {
      afterBlank_ = true;
      hasHeading_ = false;
      return;
    }
    if (kind != IniLineKind::kComment) {
      hasHeading_ = false;
    } else if (afterBlank_) {
      heading_ = last_;
      hasHeading_ = true;
    }
    afterBlank_ = false;
    last_ = end;
  }
  size_t AtEndOfFile() const { return last_; }
  // A comment that has a blank line above it and none below belongs to the section that follows.
  size_t AtNextSection() const { return hasHeading_ ? heading_ : last_; }

 private:
  size_t last_;         // behind the last line that is not blank
  size_t heading_ = 0;  // the same without the comment that may be a heading
  bool hasHeading_ = false;
  bool afterBlank_ = false;
};

struct Found {
  // Of the last such key: the value as it stands, and where.
  std::optional<std::string_view> text;
  size_t textStart = 0;
  // Where a new key of the section goes; none when there is no such section.
  std::optional<size_t> insertion;
};

Found Find(std::string_view bytes, std::string_view section, std::string_view key) {
  const std::string_view sectionName = IniTrim(section);
  const std::string_view keyName = IniTrim(key);
  Found found;
  bool inside = sectionName.empty();
  SectionEnd sectionEnd(0);
  for (IniLines lines(bytes); lines.Next();) {
    const IniLine& line = lines.Line();
    if (line.kind == IniLineKind::kSection) {
      if (inside) found.insertion = sectionEnd.AtNextSection();
      inside = IniSameName(line.name, sectionName);
      sectionEnd = SectionEnd(lines.End());
      continue;
    }
    sectionEnd.Pass(line.kind, lines.End());
    if (inside && line.kind == IniLineKind::kSetting && IniSameName(line.name, keyName)) {
      found.text = line.value;
      found.textStart = lines.Start() + line.valueStart;
    }
  }
  if (inside) found.insertion = sectionEnd.AtEndOfFile();
  return found;
}

// Neither blank, nor a comment, nor several lines.
bool CanBegin(std::string_view name) {
  return !name.empty() && name.front() != ';' && name.front() != '#' &&
         name.find_first_of("\r\n=") == std::string_view::npos;
}

bool CanNameSection(std::string_view name) {
  return CanBegin(name) && name.find(']') == std::string_view::npos;
}

bool CanNameKey(std::string_view name) {
  // One that begins with a bracket would be read as a section.
  return CanBegin(name) && name.front() != '[';
}

// The line end of the line before the place, or else the first of the file.
std::string_view LineEnd(std::string_view bytes, size_t place) {
  size_t lineBreak = place > 0 && bytes[place - 1] == '\n' ? place - 1 : bytes.find('\n');
  if (lineBreak == std::string_view::npos || lineBreak == 0) return "\n";
  return bytes[lineBreak - 1] == '\r' ? "\r\n" : "\n";
}

bool EndsWithBlankLine(std::string_view bytes) {
  bool blank = true;
  for (IniLines lines(bytes); lines.Next();) blank = lines.Line().kind == IniLineKind::kBlank;
  return blank;
}

}  // namespace

std::optional<std::string> IniDocument::Get(std::string_view section, std::string_view key) const {
  const Found found = Find(bytes_, section, key);
  if (!found.text) return std::nullopt;
  return IniUnquote(*found.text);
}

IniChange IniDocument::Set(std::string_view section, std::string_view key, std::string_view value) {
  const std::string_view sectionName = IniTrim(section);
  const std::string_view keyName = IniTrim(key);
  if (!CanNameSection(sectionName) || !CanNameKey(keyName)) return IniChange::kRefused;

  const Found found = Find(bytes_, sectionName, keyName);
  if (found.text && IniUnquote(*found.text) == value) return IniChange::kNone;
  const std::string text = IniQuote(value);
  if (found.text) {
    bytes_.replace(found.textStart, found.text->size(), text);
    return IniChange::kChanged;
  }
  const std::string line = std::string(keyName) + '=' + text;
  if (found.insertion) {
    Insert(*found.insertion, line);
  } else {
    if (!EndsWithBlankLine(bytes_)) Insert(bytes_.size(), "");
    Insert(bytes_.size(), '[' + std::string(sectionName) + ']');
    Insert(bytes_.size(), line);
  }
  return IniChange::kChanged;
}

// Adds a line at the end of another one. What is added ends its line, and ends the line before when that has
// no end.
void IniDocument::Insert(size_t place, const std::string& line) {
  const std::string_view lineEnd = LineEnd(bytes_, place);
  std::string added = line + std::string(lineEnd);
  const bool open = place == bytes_.size() && place > IniTextStart(bytes_) && bytes_.back() != '\n';
  if (open) added.insert(0, lineEnd);
  bytes_.insert(place, added);
}
