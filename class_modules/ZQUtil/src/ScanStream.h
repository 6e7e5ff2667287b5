// The events of a scan's results, one by one, by the wireless library.
//
// The library trusts what an event says of its length in places; here whatever an event claims stays within the
// event and within the results.
#ifndef ZQUTIL_SCAN_STREAM_H
#define ZQUTIL_SCAN_STREAM_H

#include <iwlib.h>

#include <cstddef>

class ScanStream {
 public:
  // Bytes that the buffer must have behind the results: the library looks a few bytes ahead.
  static constexpr size_t kSlack = 16;

  // The results are `length` bytes; `version` is the driver's we_version_compiled. The buffer outlives this object.
  ScanStream(char* results, size_t length, int version);

  // The next event, good until the call after; null at the end, or at what is no event.
  iw_event* Next();

 private:
  // Whether what the event carries lies in it and in the results.
  bool PayloadIsInside(const char* event) const;

  stream_descr stream_;
  int version_;
  struct {
    iw_event event;
    // The library writes beyond an event of an old version whose lengths contradict each other.
    char slack[kSlack];
  } room_;
};

#endif
