#include "ScanStream.h"

#include <algorithm>

namespace {

// The events whose fixed part is a place, a length and flags.
bool HasPayload(const iw_event& event) {
  return event.cmd == SIOCGIWESSID || event.cmd == SIOCGIWENCODE || event.cmd == IWEVCUSTOM ||
         event.cmd == IWEVGENIE;
}

}  // namespace

ScanStream::ScanStream(char* results, size_t length, int version) : stream_(), version_(version), room_() {
  iw_init_event_stream(&stream_, results, static_cast<int>(length));
}

iw_event* ScanStream::Next() {
  const char* const begin = stream_.current;
  // The library adds to the place before it compares it with the end.
  if (begin >= stream_.end) return nullptr;
  if (iw_extract_event_stream(&stream_, &room_.event, version_) < 1) return nullptr;
  if (HasPayload(room_.event) && !PayloadIsInside(begin)) room_.event.u.data.pointer = nullptr;
  return &room_.event;
}

bool ScanStream::PayloadIsInside(const char* event) const {
  const char* const payload = static_cast<const char*>(room_.event.u.data.pointer);
  if (payload == nullptr) return true;
  const ptrdiff_t room = std::min<ptrdiff_t>(room_.event.len, stream_.end - event);
  const ptrdiff_t before = payload - event;
  return before >= 0 && before + room_.event.u.data.length <= room;
}
