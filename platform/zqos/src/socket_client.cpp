#include "socket_client.h"

#include <sys/epoll.h>
#include <sys/socket.h>

SocketClient::SocketClient(int family, std::weak_ptr<MsgqLoop> queue)
    : socket_(socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)), queue_(std::move(queue)) {}

void SocketClient::SetName(const char* name) {
  const std::lock_guard lock(nameMutex_);
  name_ = name;
}

std::string SocketClient::Name() const {
  const std::lock_guard lock(nameMutex_);
  return name_;
}

SocketClient::News SocketClient::OnEvents(uint32_t events) {
  if (connected_) {
    return (events & (EPOLLRDHUP | EPOLLHUP | EPOLLERR)) != 0 ? News::kFailed : News::kNone;
  }
  int error = 0;
  socklen_t size = sizeof error;
  if (getsockopt(socket_.Get(), SOL_SOCKET, SO_ERROR, &error, &size) != 0 || error != 0) return News::kFailed;
  if ((events & EPOLLOUT) == 0) return (events & EPOLLHUP) != 0 ? News::kFailed : News::kNone;
  connected_ = true;
  return News::kConnected;
}

// A connected socket's data are its reader's affair; the queue only looks for the end.
uint32_t SocketClient::Interest() const {
  return connected_ ? EPOLLRDHUP : EPOLLOUT;
}

HandleTable<SocketClient>& SocketHandles() {
  static auto* const handles =
      new HandleTable<SocketClient>;  // never destroyed: threads use it until the end
  return *handles;
}
