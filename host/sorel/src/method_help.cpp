#include "method_help.h"

#include <strings.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace sorel {
namespace {

namespace fs = std::filesystem;

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && isspace(static_cast<unsigned char>(text.front())) != 0) text.remove_prefix(1);
  while (!text.empty() && isspace(static_cast<unsigned char>(text.back())) != 0) text.remove_suffix(1);
  return text;
}

bool TakePrefix(std::string_view* text, std::string_view prefix) {
  if (!text->starts_with(prefix)) return false;
  text->remove_prefix(prefix.size());
  return true;
}

// One line of a comment's text: "@param name what" becomes "  name: what", "@returns what" "Returns what".
std::string PlainLine(std::string_view line) {
  line = Trimmed(line);
  if (TakePrefix(&line, "@param ")) {
    const size_t blank = std::min(line.find(' '), line.size());
    return "  " + std::string(line.substr(0, blank)) + ":" + std::string(line.substr(blank));
  }
  if (TakePrefix(&line, "@returns ")) return "Returns " + std::string(line);
  if (TakePrefix(&line, "@throws ")) return "Throws " + std::string(line);
  return std::string(line);
}

// The declaration's name: letters up to its arguments or type parameters; "" when it is no function.
std::string_view FunctionName(std::string_view declaration) {
  size_t end = 0;
  while (end < declaration.size() &&
         (isalnum(static_cast<unsigned char>(declaration[end])) != 0 || declaration[end] == '_')) {
    ++end;
  }
  const bool callable = end < declaration.size() && (declaration[end] == '(' || declaration[end] == '<');
  return callable ? declaration.substr(0, end) : std::string_view();
}

class Reader {
 public:
  void Line(std::string_view raw) {
    std::string_view line = Trimmed(raw);
    if (inComment_) return CommentLine(line);
    if (TakePrefix(&line, "/**")) {
      text_.clear();
      inComment_ = true;
      return CommentLine(line);
    }
    if (line.starts_with("declare class "))
      inClass_ = true;
    else if (raw.starts_with("}"))
      inClass_ = false;
    else if (!declaration_.empty() || inClass_ || TakePrefix(&line, "declare function "))
      Declaration(line);
    // A comment belongs to the declaration right below it.
    if (declaration_.empty()) text_.clear();
  }

  std::vector<MethodHelp> Take() { return std::move(found_); }

 private:
  void CommentLine(std::string_view line) {
    const bool ends = line.ends_with("*/");
    if (ends) line.remove_suffix(2);
    if (!TakePrefix(&line, "* ")) TakePrefix(&line, "*");
    const std::string plain = PlainLine(line);
    if (!plain.empty()) text_ += plain + "\n";
    inComment_ = !ends;
  }

  // A declaration ends with ';', on this line or a later one.
  void Declaration(std::string_view line) {
    if (declaration_.empty() && FunctionName(line).empty()) return;
    if (!declaration_.empty()) declaration_ += ' ';
    declaration_ += line;
    if (!line.ends_with(";")) return;
    declaration_.pop_back();
    const std::string_view name = FunctionName(declaration_);
    if (!name.empty() && name != "constructor") found_.push_back({std::string(name), declaration_, text_});
    declaration_.clear();
  }

  std::vector<MethodHelp> found_;
  std::string text_;
  std::string declaration_;  // as far as it was read
  bool inComment_ = false;
  bool inClass_ = false;
};

}  // namespace

std::vector<MethodHelp> ReadTypings(std::string_view typings) {
  Reader reader;
  while (!typings.empty()) {
    const size_t end = std::min(typings.find('\n'), typings.size());
    reader.Line(typings.substr(0, end));
    typings.remove_prefix(std::min(end + 1, typings.size()));
  }
  return reader.Take();
}

std::vector<MethodHelp> ReadTypingsFolder(const std::string& folder) {
  std::error_code error;
  std::vector<fs::path> files;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    if (entry->path().string().ends_with(".d.ts")) files.push_back(entry->path());
  }
  std::sort(files.begin(), files.end());
  std::vector<MethodHelp> all;
  for (const fs::path& path : files) {
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    for (MethodHelp& help : ReadTypings(text)) all.push_back(std::move(help));
  }
  return all;
}

std::string TypingsFolder() {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  return (program.parent_path().parent_path() / "share" / "zqutil" / "types").string();
}

const MethodHelp* FindHelp(const std::vector<MethodHelp>& all, std::string_view name) {
  const std::string wanted(name);
  const auto exact = [&wanted](const MethodHelp& help) { return help.name == wanted; };
  const auto alike = [&wanted](const MethodHelp& help) {
    return strcasecmp(help.name.c_str(), wanted.c_str()) == 0;
  };
  auto found = std::find_if(all.begin(), all.end(), exact);
  if (found == all.end()) found = std::find_if(all.begin(), all.end(), alike);
  return found != all.end() ? &*found : nullptr;
}

std::string ShowHelp(const MethodHelp& help) {
  std::string shown = help.signature;
  for (size_t from = 0; from < help.text.size();) {
    const size_t end = std::min(help.text.find('\n', from), help.text.size());
    shown += "\n  " + help.text.substr(from, end - from);
    from = end + 1;
  }
  return shown;
}

}  // namespace sorel
