// The lines of a text file that others write, one at a time. No memory is asked for.
#ifndef ZQUTIL_LINE_FILE_H
#define ZQUTIL_LINE_FILE_H

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

// A line is at most Most characters long, the rest of a longer one is the next line; it has its line break, if there is
// one. What follows a NUL in a line is lost.
template <size_t Most>
class LineFile {
 public:
  explicit LineFile(const char* path) : LineFile(open(path, O_RDONLY | O_CLOEXEC)) {}
  // Takes the descriptor; -1 is a file that could not be opened.
  explicit LineFile(int descriptor) : descriptor_(descriptor) {}
  LineFile(const LineFile&) = delete;
  LineFile& operator=(const LineFile&) = delete;
  ~LineFile() {
    if (Ok()) close(descriptor_);
  }

  bool Ok() const { return descriptor_ >= 0; }
  // False at the end of the file, and when it cannot be read on.
  bool Next() {
    size_t length = 0;
    bool ended = false;
    while (length < Most && !ended && (at_ < filled_ || Fill())) {
      text_[length] = room_[at_++];
      ended = text_[length++] == '\n';
    }
    text_[length] = '\0';
    return length > 0;
  }
  // The line that Next took; NUL-terminated.
  const char* Text() const { return text_; }

 private:
  bool Fill() {
    ssize_t count = 0;
    do {
      count = read(descriptor_, room_, sizeof room_);
    } while (count < 0 && errno == EINTR);
    at_ = 0;
    filled_ = count > 0 ? static_cast<size_t>(count) : 0;
    return filled_ > 0;
  }

  const int descriptor_;
  size_t at_ = 0;
  size_t filled_ = 0;
  char room_[4096];
  char text_[Most + 1] = {};
};

#endif
