// A TCP server's end on this machine, on a port that the kernel chooses.
#ifndef ZQ_TEST_LOOPBACK_LISTENER_H
#define ZQ_TEST_LOOPBACK_LISTENER_H

#include <cstdint>

// One thread at a time. Throws std::system_error when the system refuses.
class LoopbackListener {
 public:
  enum class Mode {
    kListening,
    kRefusing  // the port is taken, but nobody listens: who connects is refused
  };
  // `address`: 127.0.0.1 or ::1.
  explicit LoopbackListener(const char* address = "127.0.0.1", Mode mode = Mode::kListening);
  LoopbackListener(const LoopbackListener&) = delete;
  LoopbackListener& operator=(const LoopbackListener&) = delete;
  ~LoopbackListener();

  uint16_t Port() const { return port_; }
  // Waits for the next connection; its descriptor, blocking, is the caller's.
  int Accept();

 private:
  int socket_;
  uint16_t port_ = 0;
};

// Closes a connection so that its peer sees a reset.
void Reset(int connection);

#endif
