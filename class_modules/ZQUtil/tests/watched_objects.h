// The order in which C++ objects go, in the whole test program: included by one of its files.
#ifndef ZQUTIL_TESTS_WATCHED_OBJECTS_H
#define ZQUTIL_TESTS_WATCHED_OBJECTS_H

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <initializer_list>
#include <new>
#include <string>
#include <utility>

// One at a time. Sees the memory of each object go back, on whatever thread.
class WatchedObjects {
 public:
  // The objects under the names that Gone tells, at most eight.
  WatchedObjects(std::initializer_list<std::pair<const char*, const void*>> objects) {
    Count() = 0;
    size_t next = 0;
    for (const auto& [name, address] : objects) {
      names_.at(next) = name;
      Watched().at(next++) = address;
    }
  }
  WatchedObjects(const WatchedObjects&) = delete;
  WatchedObjects& operator=(const WatchedObjects&) = delete;
  ~WatchedObjects() {
    for (auto& address : Watched()) address = nullptr;
  }

  // The names in the order in which the objects went, each with a blank.
  std::string Gone() const {
    std::string names;
    for (size_t i = 0; i < Count(); ++i) names += names_.at(Order().at(i)) + " ";
    return names;
  }

  static void See(const void* block) {
    if (block == nullptr) return;
    for (size_t i = 0; i < kMost; ++i) {
      if (Watched()[i] != block) continue;
      Watched()[i] = nullptr;
      Order()[Count()++] = i;
    }
  }

 private:
  static constexpr size_t kMost = 8;

  static std::array<std::atomic<const void*>, kMost>& Watched() {
    static std::array<std::atomic<const void*>, kMost> watched;
    return watched;
  }
  static std::array<std::atomic<size_t>, kMost>& Order() {
    static std::array<std::atomic<size_t>, kMost> order;
    return order;
  }
  static std::atomic<size_t>& Count() {
    static std::atomic<size_t> count = 0;
    return count;
  }

  std::array<std::string, kMost> names_;
};

void* operator new(size_t size) {
  void* const block = std::malloc(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
// Of the same family as the rest, whatever a sanitizer puts in the library's place.
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return std::malloc(size);
}
void operator delete(void* block) noexcept {
  WatchedObjects::See(block);
  std::free(block);
}
void operator delete(void* block, size_t) noexcept {
  WatchedObjects::See(block);
  std::free(block);
}

#endif
