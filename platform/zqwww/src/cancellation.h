// One thread's word to another that is waiting for the network.
#ifndef ZQWWW_CANCELLATION_H
#define ZQWWW_CANCELLATION_H

#include <atomic>

// Any thread. Without a descriptor (the process has no more) it is noticed at the next look only, at most a
// second later.
class Cancellation {
 public:
  Cancellation();
  Cancellation(const Cancellation&) = delete;
  Cancellation& operator=(const Cancellation&) = delete;
  ~Cancellation();

  void Request();
  bool Requested() const { return requested_.load(std::memory_order_acquire); }
  // Readable from the request on; -1 when there is none.
  int Descriptor() const { return descriptor_; }

 private:
  std::atomic<bool> requested_{false};
  int descriptor_;
};

#endif
