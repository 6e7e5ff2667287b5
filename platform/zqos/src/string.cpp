#include <exception>
#include <new>
#include <string>

#include "zq_string.h"

struct _ZqString {
  std::string bytes;
};

_ZqString* zq_StringCreate(size_t capacity) {
  auto* string = new (std::nothrow) _ZqString;
  if (string == nullptr) return nullptr;
  try {
    string->bytes.reserve(capacity);
    return string;
  } catch (const std::exception&) {
    delete string;
    return nullptr;
  }
}

void zq_StringDestroy(_ZqString* string) {
  delete string;
}

void zq_StringReset(_ZqString* string) {
  if (string != nullptr) string->bytes.clear();
}

bool zq_StringAppend(_ZqString* string, const char* text) {
  if (string == nullptr || text == nullptr) return false;
  try {
    string->bytes.append(text);
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

bool zq_StringAppendBytes(_ZqString* string, const void* bytes, size_t count) {
  if (string == nullptr || (bytes == nullptr && count > 0)) return false;
  if (count == 0) return true;
  try {
    string->bytes.append(static_cast<const char*>(bytes), count);
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

size_t zq_StringLength(const _ZqString* string) {
  return string != nullptr ? string->bytes.size() : 0;
}

const char* zq_StringText(const _ZqString* string) {
  return string != nullptr ? string->bytes.c_str() : "";
}
