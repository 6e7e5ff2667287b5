#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "platform_trace.h"
#include "zq_memory.h"

void* zq__calloc(size_t count, size_t size, const char* file, int line) {
  size_t bytes = 0;
  const bool possible = !__builtin_mul_overflow(count, size, &bytes) && bytes <= PTRDIFF_MAX;
  // At least a byte: a block of no bytes is not a failure.
  void* block = possible ? calloc(bytes > 0 ? bytes : 1, 1) : nullptr;
  if (block == nullptr) {
    PlatformFailure("no memory for %zu times %zu bytes (%s:%d)", count, size, SourceName(file), line);
  }
  return block;
}

char* zq__newString(const char* text, const char* file, int line) {
  if (text == nullptr) return nullptr;
  const size_t bytes = strlen(text) + 1;
  void* copy = malloc(bytes);
  if (copy == nullptr) {
    PlatformFailure("no memory for a text of %zu bytes (%s:%d)", bytes, SourceName(file), line);
    return nullptr;
  }
  return static_cast<char*>(memcpy(copy, text, bytes));
}

void zq__free(void* block, const char* /*file*/, int /*line*/) {
  free(block);
}
