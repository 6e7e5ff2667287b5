#include "event_stream.h"

#include <cstring>

namespace {

constexpr size_t kHead = 4;            // length and command
constexpr size_t kLengthAndFlags = 4;  // of a variable payload
constexpr size_t kAlignment = 4;       // what a 64-bit layout adds before each part
constexpr uint8_t kFirstWithoutPointers = 19;

}  // namespace

void EventStream::Add(const void* bytes, size_t count) {
  if (count > 0 && length_ <= size_ && count <= size_ - length_) memcpy(buffer_ + length_, bytes, count);
  length_ += count;
}

void EventStream::AddWord(uint16_t word) {
  Add(&word, sizeof(word));
}

void EventStream::AddZeros(size_t count) {
  constexpr uint8_t kZeros[8] = {};
  Add(kZeros, count);
}

void EventStream::Head(size_t eventLength, uint16_t command) {
  AddWord(static_cast<uint16_t>(eventLength));
  AddWord(command);
}

void EventStream::Fixed(uint16_t command, const void* payload, size_t size) {
  const size_t gap = form_.wide && form_.version >= kFirstWithoutPointers ? kAlignment : 0;
  Head(kHead + gap + size, command);
  AddZeros(gap);
  Add(payload, size);
}

void EventStream::Variable(uint16_t command, const uint8_t* payload, size_t size, uint16_t flags) {
  size_t before = form_.wide ? 8 : 4;  // the pointer
  size_t after = 0;
  if (form_.version >= kFirstWithoutPointers) {
    before = form_.wide ? kAlignment : 0;
    after = before;
  }
  Head(kHead + before + kLengthAndFlags + after + size, command);
  AddZeros(before);
  AddWord(static_cast<uint16_t>(size));
  AddWord(flags);
  AddZeros(after);
  Add(payload, size);
}
