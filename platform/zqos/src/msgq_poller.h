// Where a queue's thread waits: for a waker and for the descriptors that the queue watches.
#ifndef ZQ_MSGQ_POLLER_H
#define ZQ_MSGQ_POLLER_H

#include <cstdint>
#include <span>

#include "file_descriptor.h"

class MsgqPoller {
 public:
  struct Event {
    uint64_t key;     // what Watch was given
    uint32_t events;  // of epoll
  };

  MsgqPoller();
  // False when the system gave no descriptor.
  bool IsOpen() const { return open_; }

  // Any thread. Each call ends one Wait, the one under way or the next.
  void Wake() const;
  int WakerDescriptor() const { return waker_.Get(); }

  // Any thread. False when the system refuses.
  bool Watch(int fd, uint32_t events, uint64_t key) const;
  bool Change(int fd, uint32_t events, uint64_t key) const;
  void Forget(int fd) const;

  // One thread at a time. Waits for at most `milliseconds`, -1 for no limit; what happened, good until the
  // next call. Empty after a wake, at the end of the time or when a signal came.
  std::span<const Event> Wait(int milliseconds);

 private:
  static constexpr int kMost = 32;

  FileDescriptor epoll_;
  FileDescriptor waker_;
  bool open_;
  Event happened_[kMost] = {};
};

#endif
