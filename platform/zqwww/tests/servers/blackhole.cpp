#include "blackhole.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

// The kernel drops what asks for a connection while the queue of those that nobody accepts is full.
Blackhole::Blackhole() : listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* name = reinterpret_cast<sockaddr*>(&address);
  bind(listener_, name, size);
  listen(listener_, 0);
  getsockname(listener_, name, &size);
  port_ = ntohs(address.sin_port);
  for (int i = 0; i < 4; ++i) {
    const int one = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    connect(one, name, size);
    crowd_.push_back(one);
  }
}

Blackhole::~Blackhole() {
  for (const int one : crowd_) close(one);
  close(listener_);
}
