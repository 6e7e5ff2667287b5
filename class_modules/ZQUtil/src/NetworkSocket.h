// A socket to ask the kernel about interfaces with.
#ifndef ZQUTIL_NETWORK_SOCKET_H
#define ZQUTIL_NETWORK_SOCKET_H

#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

class NetworkSocket {
 public:
  NetworkSocket() : descriptor_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {}
  NetworkSocket(const NetworkSocket&) = delete;
  NetworkSocket& operator=(const NetworkSocket&) = delete;
  ~NetworkSocket() {
    if (descriptor_ > 0) close(descriptor_);
  }

  // False when the system gives no socket.
  bool Ok() const { return descriptor_ >= 0; }
  int Descriptor() const { return descriptor_; }
  // The request's result, and errno; negative when the kernel refuses.
  template <typename Request>
  int Ask(unsigned long question, Request* request) const {
    return ioctl(descriptor_, question, request);
  }

 private:
  const int descriptor_;
};

#endif
