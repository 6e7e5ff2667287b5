// Texts that are dropped together: the first few bytes lie in the arena itself, so that a call with short texts asks
// for no memory.
#ifndef SOREL_TEXT_ARENA_H
#define SOREL_TEXT_ARENA_H

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <vector>

namespace sorel {

class TextArena {
 public:
  // Only what is used of the first bytes is ever initialised.
  TextArena() : next_(first_), room_(sizeof first_) {}
  TextArena(const TextArena&) = delete;
  TextArena& operator=(const TextArena&) = delete;
  ~TextArena() = default;

  // A copy with a NUL behind it, good as long as the arena.
  const char* Add(const char* bytes, size_t length) {
    if (length >= room_) AddBlock(length + 1);
    char* const text = next_;
    memcpy(text, bytes, length);
    text[length] = '\0';
    next_ += length + 1;
    room_ -= length + 1;
    return text;
  }

 private:
  static constexpr size_t kBlock = 4096;

  void AddBlock(size_t least) {
    const size_t size = std::max(kBlock, least);
    blocks_.emplace_back(new char[size]);
    next_ = blocks_.back().get();
    room_ = size;
  }

  char first_[192];
  std::vector<std::unique_ptr<char[]>> blocks_;
  char* next_;
  size_t room_;
};

}  // namespace sorel

#endif
