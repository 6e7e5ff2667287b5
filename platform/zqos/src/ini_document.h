// The text of an INI file, and its settings. Touches no file. Every byte that a change does not concern
// stays.
#ifndef ZQ_INI_DOCUMENT_H
#define ZQ_INI_DOCUMENT_H

#include <optional>
#include <string>
#include <string_view>
#include <utility>

enum class IniChange {
  kNone,     // the value was there already
  kChanged,  // the document holds the value now
  kRefused,  // section or key cannot stand in a file; the document is as it was
};

// Blanks around a section's or a key's name do not count.
class IniDocument {
 public:
  explicit IniDocument(std::string bytes) : bytes_(std::move(bytes)) {}

  const std::string& Bytes() const { return bytes_; }
  // The value of the last such key in sections of this name. The empty section is what stands before all
  // others.
  std::optional<std::string> Get(std::string_view section, std::string_view key) const;
  // Replaces the value that Get gives; else adds the key to the last section of this name, before the blank
  // lines at its end and before a comment that heads the next section; else adds the section at the end of
  // the file.
  IniChange Set(std::string_view section, std::string_view key, std::string_view value);

 private:
  void Insert(size_t place, const std::string& line);

  std::string bytes_;
};

#endif
