// Wireless events one after the other, as a kernel packs them into a program's buffer. In machine byte order, an event
// is its length and its command, two bytes each, and then:
//
//   layout                fixed payload          variable payload
//   32 bits, since WE-19  payload                length, flags, payload
//   64 bits, since WE-19  4 bytes 0, payload     4 bytes 0, length, flags, 4 bytes 0, payload
//   before WE-19          payload                pointer (0), length, flags, payload
//
// The last is as a program of this machine reads it: the pointer has the layout's size.
#ifndef ZQSIM_EVENT_STREAM_H
#define ZQSIM_EVENT_STREAM_H

#include <cstddef>
#include <cstdint>

struct StreamForm {
  uint8_t version = 22;            // of the wireless extensions
  bool wide = sizeof(void*) == 8;  // pointers of 64 bits; as the programs have them unless told otherwise
};

class EventStream {
 public:
  // Nothing beyond `size` is written; a null buffer with size 0 only counts.
  EventStream(uint8_t* buffer, size_t size, StreamForm form) : buffer_(buffer), size_(size), form_(form) {}

  void Fixed(uint16_t command, const void* payload, size_t size);
  // With at most 65000 bytes.
  void Variable(uint16_t command, const uint8_t* payload, size_t size, uint16_t flags);

  // What all events take, those that did not fit counted.
  size_t Length() const { return length_; }
  bool Fits() const { return length_ <= size_; }

 private:
  void Head(size_t eventLength, uint16_t command);
  void Add(const void* bytes, size_t count);
  void AddWord(uint16_t word);
  void AddZeros(size_t count);

  uint8_t* buffer_;
  size_t size_;
  StreamForm form_;
  size_t length_ = 0;
};

#endif
