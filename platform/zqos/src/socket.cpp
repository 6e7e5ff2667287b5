#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <new>

#include "msgq_loop.h"
#include "platform_trace.h"
#include "socket_client.h"
#include "zq_socket.h"

namespace {

struct Peer {
  sockaddr_storage address{};
  socklen_t size = 0;
};

// Size 0 for a text that is no IPv4 or IPv6 address.
Peer PeerAt(const char* address, uint16_t port) {
  Peer peer;
  auto* const four = reinterpret_cast<sockaddr_in*>(&peer.address);
  auto* const six = reinterpret_cast<sockaddr_in6*>(&peer.address);
  if (inet_pton(AF_INET, address, &four->sin_addr) == 1) {
    four->sin_family = AF_INET;
    four->sin_port = htons(port);
    peer.size = sizeof *four;
  } else if (inet_pton(AF_INET6, address, &six->sin6_addr) == 1) {
    six->sin6_family = AF_INET6;
    six->sin6_port = htons(port);
    peer.size = sizeof *six;
  }
  return peer;
}

// Whether it has failed already: a refusal on the way to the machine itself is known at once.
bool BeginToConnect(int socket, const Peer& peer) {
  return connect(socket, reinterpret_cast<const sockaddr*>(&peer.address), peer.size) != 0 &&
         errno != EINPROGRESS && errno != EINTR;
}

// The first address of the family; "" when the list has none.
bool FirstOfFamily(const addrinfo* list, int family, char address[ZQ_ADDRESS_TEXT]) {
  for (const addrinfo* at = list; at != nullptr; at = at->ai_next) {
    if (at->ai_family != family) continue;
    const void* const bytes =
        family == AF_INET
            ? static_cast<const void*>(&reinterpret_cast<sockaddr_in*>(at->ai_addr)->sin_addr)
            : static_cast<const void*>(&reinterpret_cast<sockaddr_in6*>(at->ai_addr)->sin6_addr);
    if (inet_ntop(family, bytes, address, ZQ_ADDRESS_TEXT) != nullptr) return true;
  }
  return false;
}

}  // namespace

bool zq_SocketLookup(const char* host, char address[ZQ_ADDRESS_TEXT]) {
  address[0] = '\0';
  if (host == nullptr || *host == '\0') return false;
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* list = nullptr;
  if (getaddrinfo(host, nullptr, &hints, &list) != 0) return false;
  const bool found = FirstOfFamily(list, AF_INET, address) || FirstOfFamily(list, AF_INET6, address);
  freeaddrinfo(list);
  return found;
}

uint32_t zq_SocketOpenTcpClient(uint32_t queue, const char* address, uint16_t port, const char* file,
                                int line) try {
  const std::shared_ptr<MsgqLoop> loop = QueueHandles().Find(queue);
  const Peer peer = address == nullptr ? Peer{} : PeerAt(address, port);
  if (loop == nullptr || peer.size == 0 || port == 0) return 0;
  const auto socket = std::make_shared<SocketClient>(peer.address.ss_family, loop);
  if (socket->Descriptor() < 0) {
    PlatformFailure("no socket for %s port %u (%s:%d)", address, port, SourceName(file), line);
    return 0;
  }
  const bool failed = BeginToConnect(socket->Descriptor(), peer);
  const uint32_t handle = SocketHandles().Add(socket);
  if (loop->Watch(handle, socket, failed)) return handle;
  SocketHandles().Remove(handle);
  return 0;
} catch (const std::bad_alloc&) {
  PlatformFailure("no memory for a socket (%s:%d)", SourceName(file), line);
  return 0;
}

void zq_SocketSetName(uint32_t socket, const char* name) try {
  const std::shared_ptr<SocketClient> client = SocketHandles().Find(socket);
  if (client != nullptr) client->SetName(name == nullptr ? "" : name);
} catch (const std::bad_alloc&) {
  PlatformFailure("no memory for the name of socket %s", name);
}

void zq_SocketSetReceiveLimit(uint32_t socket, uint32_t bytes) {
  const std::shared_ptr<SocketClient> client = SocketHandles().Find(socket);
  if (client == nullptr) return;
  // The kernel doubles the figure for what it spends itself.
  const int limit = static_cast<int>(std::min<uint32_t>(bytes, INT_MAX / 2));
  if (setsockopt(client->Descriptor(), SOL_SOCKET, SO_RCVBUF, &limit, sizeof limit) != 0) {
    PlatformFailure("socket \"%s\": no limit of %d bytes", client->Name().c_str(), limit);
  }
}

int zq_SocketDescriptor(uint32_t socket) {
  const std::shared_ptr<SocketClient> client = SocketHandles().Find(socket);
  return client == nullptr ? -1 : client->Descriptor();
}

void zq_SocketClose(uint32_t socket) {
  const std::shared_ptr<SocketClient> client = SocketHandles().Remove(socket);
  if (client == nullptr) return;
  const std::shared_ptr<MsgqLoop> loop = client->Queue();
  if (loop != nullptr) loop->Forget(socket);
}
