#include "loopback_listener.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace {

int Checked(int result, const char* what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
  return result;
}

}  // namespace

LoopbackListener::LoopbackListener(const char* address, Mode mode) : socket_(-1) {
  sockaddr_in6 six{};
  sockaddr_in four{};
  sockaddr* name = reinterpret_cast<sockaddr*>(&four);
  socklen_t size = sizeof four;
  if (inet_pton(AF_INET, address, &four.sin_addr) == 1) {
    four.sin_family = AF_INET;
  } else {
    inet_pton(AF_INET6, address, &six.sin6_addr);
    six.sin6_family = AF_INET6;
    name = reinterpret_cast<sockaddr*>(&six);
    size = sizeof six;
  }
  socket_ = Checked(socket(name->sa_family, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket");
  Checked(bind(socket_, name, size), "bind");
  if (mode == Mode::kListening) Checked(listen(socket_, SOMAXCONN), "listen");
  Checked(getsockname(socket_, name, &size), "getsockname");
  port_ = ntohs(name->sa_family == AF_INET ? four.sin_port : six.sin6_port);
}

LoopbackListener::~LoopbackListener() {
  close(socket_);
}

int LoopbackListener::Accept() {
  return Checked(accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC), "accept");
}

void Reset(int connection) {
  const linger now{1, 0};
  setsockopt(connection, SOL_SOCKET, SO_LINGER, &now, sizeof now);
  close(connection);
}
