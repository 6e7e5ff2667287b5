// One TCP connection that is being made, stands, or has failed.
#ifndef ZQ_SOCKET_CLIENT_H
#define ZQ_SOCKET_CLIENT_H

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "file_descriptor.h"
#include "msgq_handles.h"

class MsgqLoop;

class SocketClient {
 public:
  // A socket of the address's family that is not connected yet; Descriptor() is -1 when the system gives
  // none.
  SocketClient(int family, std::weak_ptr<MsgqLoop> queue);

  int Descriptor() const { return socket_.Get(); }
  // The queue that hears of it; null when that has ended.
  std::shared_ptr<MsgqLoop> Queue() const { return queue_.lock(); }

  void SetName(const char* name);
  std::string Name() const;

  // What became of it. One thread at a time, the queue's.
  enum class News { kNone, kConnected, kFailed };
  // Takes what epoll said about the descriptor.
  News OnEvents(uint32_t events);
  // What to watch for next, as epoll events.
  uint32_t Interest() const;

 private:
  const FileDescriptor socket_;
  const std::weak_ptr<MsgqLoop> queue_;
  bool connected_ = false;
  mutable std::mutex nameMutex_;
  std::string name_;
};

// The handles of the sockets that are open.
HandleTable<SocketClient>& SocketHandles();

#endif
