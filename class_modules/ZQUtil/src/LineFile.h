// The lines of a text file that others write, one at a time.
#ifndef ZQUTIL_LINE_FILE_H
#define ZQUTIL_LINE_FILE_H

#include <cstdio>
#include <string_view>

// A line is at most Most characters long, the rest of a longer one is the next line; it has its line break, if there is
// one. What follows a NUL in a line is lost.
template <int Most>
class LineFile {
 public:
  explicit LineFile(const char* path) : LineFile(std::fopen(path, "re")) {}
  // Takes the file; null is a file that could not be opened.
  explicit LineFile(std::FILE* file) : file_(file) {}
  LineFile(const LineFile&) = delete;
  LineFile& operator=(const LineFile&) = delete;
  ~LineFile() {
    if (file_ != nullptr) std::fclose(file_);
  }

  bool Ok() const { return file_ != nullptr; }
  // False at the end of the file and when it cannot be read.
  bool Next() { return std::fgets(text_, sizeof text_, file_) != nullptr; }
  // The line that Next took; NUL-terminated.
  const char* Text() const { return text_; }

 private:
  std::FILE* const file_;
  char text_[Most + 1] = {};
};

#endif
