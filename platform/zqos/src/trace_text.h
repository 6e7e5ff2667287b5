// A text printed in printf's way, on the stack while it is short.
#ifndef ZQOS_TRACE_TEXT_H
#define ZQOS_TRACE_TEXT_H

#include <array>
#include <cstdarg>
#include <cstddef>
#include <memory>
#include <string_view>

class TraceText {
 public:
  // Adds the printed text. What cannot be printed (the arguments are no text of the locale) is added as its
  // format; when there is no memory for a long text, its beginning is.
  void Append(const char* format, va_list arguments) __attribute__((__format__(__printf__, 2, 0)));
  void Append(std::string_view text);
  // Drops one "\n" at the end.
  void DropLineEnd();
  std::string_view View() const { return {Data(), length_}; }

 private:
  const char* Data() const { return heap_ ? heap_.get() : stack_.data(); }
  char* Data() { return heap_ ? heap_.get() : stack_.data(); }
  size_t Room() const { return room_ - length_; }
  bool Grow(size_t room);

  std::array<char, 512> stack_;
  std::unique_ptr<char[]> heap_;
  size_t room_ = stack_.size();
  size_t length_ = 0;
};

#endif
