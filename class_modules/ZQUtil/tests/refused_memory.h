// Memory that runs out, in the whole test program: included by one of its files.
#ifndef ZQUTIL_TESTS_REFUSED_MEMORY_H
#define ZQUTIL_TESTS_REFUSED_MEMORY_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

// While it lives, C++ objects of a size between the two find no memory, on every thread.
class RefusedMemory {
 public:
  explicit RefusedMemory(size_t least, size_t most = SIZE_MAX) {
    Most() = most;
    Least() = least;
  }
  RefusedMemory(const RefusedMemory&) = delete;
  RefusedMemory& operator=(const RefusedMemory&) = delete;
  ~RefusedMemory() { Least() = SIZE_MAX; }

  static bool Refuses(size_t size) { return size >= Least() && size <= Most(); }

 private:
  static std::atomic<size_t>& Least() {
    static std::atomic<size_t> least = SIZE_MAX;
    return least;
  }
  static std::atomic<size_t>& Most() {
    static std::atomic<size_t> most = SIZE_MAX;
    return most;
  }
};

void* operator new(size_t size) {
  void* const block = RefusedMemory::Refuses(size) ? nullptr : std::malloc(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
// Of the same family as the rest, whatever a sanitizer puts in the library's place.
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return RefusedMemory::Refuses(size) ? nullptr : std::malloc(size);
}
void operator delete(void* block) noexcept {
  std::free(block);
}
void operator delete(void* block, size_t) noexcept {
  std::free(block);
}

#endif
