#include "trace_text.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>

void TraceText::Append(const char* format, va_list arguments) {
  const int error = errno;  // "%m" prints it
  va_list again;
  va_copy(again, arguments);
  const int length = vsnprintf(Data() + length_, Room(), format, arguments);
  if (length < 0) {
    Append(std::string_view(format));
  } else if (static_cast<size_t>(length) < Room()) {
    length_ += static_cast<size_t>(length);
  } else if (Grow(length_ + static_cast<size_t>(length) + 1)) {
    errno = error;
    const int second = vsnprintf(Data() + length_, Room(), format, again);
    if (second > 0) length_ += std::min(static_cast<size_t>(second), Room() - 1);
  } else {
    length_ = room_ - 1;
  }
  va_end(again);
}

void TraceText::Append(std::string_view text) {
  if (text.size() > Room() && !Grow(length_ + text.size())) text = text.substr(0, Room());
  memcpy(Data() + length_, text.data(), text.size());
  length_ += text.size();
}

void TraceText::DropLineEnd() {
  if (length_ > 0 && Data()[length_ - 1] == '\n') --length_;
}

bool TraceText::Grow(size_t room) {
  std::unique_ptr<char[]> larger(new (std::nothrow) char[room]);
  if (!larger) return false;
  memcpy(larger.get(), Data(), length_);
  heap_ = std::move(larger);
  room_ = room;
  return true;
}
