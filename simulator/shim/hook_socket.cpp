// Sockets that speak with the kernel about network interfaces: those for notices tell the device's, and none reaches this
// machine's. All others are the machine's.
#include <linux/netlink.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>

#include "device_table.h"
#include "interface_news.h"
#include "next.h"
#include "world.h"

// What the headers' checks turn calls into.
extern "C" {
ssize_t __recv_chk(int, void*, size_t, size_t, int);
ssize_t __recvfrom_chk(int, void*, size_t, size_t, int, sockaddr*, socklen_t*);
}

ZQSIM_NEXT(socket)
ZQSIM_NEXT(bind)
ZQSIM_NEXT(recv)
ZQSIM_NEXT(recvfrom)
ZQSIM_NEXT(recvmsg)
ZQSIM_NEXT(__recv_chk)
ZQSIM_NEXT(__recvfrom_chk)

namespace {

bool IsNews(int descriptor) {
  return FindDevice(descriptor, DeviceKind::kNetlink) != nullptr;
}

// The sender of every notice.
void PutKernel(void* address, socklen_t* length) {
  if (address == nullptr || length == nullptr) return;
  sockaddr_nl kernel{};
  kernel.nl_family = AF_NETLINK;
  memcpy(address, &kernel, *length < sizeof(kernel) ? *length : sizeof(kernel));
  *length = sizeof(kernel);
}

ssize_t ReceiveFrom(int descriptor, void* buffer, size_t size, int flags, sockaddr* from, socklen_t* length) {
  const ssize_t received = ReceiveInterfaceNews(descriptor, buffer, size, flags);
  if (received >= 0) PutKernel(from, length);
  return received;
}

}  // namespace

ZQSIM_HOOK int socket(int domain, int type, int protocol) noexcept {
  if (CurrentView() == nullptr) return NEXT(socket)(domain, type, protocol);
  // By its number an interface of the device may be any of the machine's.
  if (domain == AF_PACKET) {
    errno = EAFNOSUPPORT;
    return -1;
  }
  if (domain == AF_NETLINK && protocol == NETLINK_ROUTE) {
    return NoteOpened(OpenInterfaceNews(type), DeviceKind::kNetlink);
  }
  return NoteOpened(NEXT(socket)(domain, type, protocol), DeviceKind::kPlain);
}

ZQSIM_HOOK int bind(int descriptor, const sockaddr* address, socklen_t length) noexcept {
  if (!IsNews(descriptor)) return NEXT(bind)(descriptor, address, length);
  sockaddr_nl wanted{};
  if (address == nullptr || length < sizeof(wanted) || address->sa_family != AF_NETLINK) {
    errno = EINVAL;
    return -1;
  }
  memcpy(&wanted, address, sizeof(wanted));
  if (wanted.nl_groups != 0) WatchInterfaces(descriptor);
  return 0;
}

ZQSIM_HOOK ssize_t recv(int descriptor, void* buffer, size_t size, int flags) {
  if (!IsNews(descriptor)) return NEXT(recv)(descriptor, buffer, size, flags);
  return ReceiveInterfaceNews(descriptor, buffer, size, flags);
}

ZQSIM_HOOK ssize_t __recv_chk(int descriptor, void* buffer, size_t size, size_t room, int flags) {
  if (!IsNews(descriptor)) return NEXT(__recv_chk)(descriptor, buffer, size, room, flags);
  return ReceiveInterfaceNews(descriptor, buffer, size < room ? size : room, flags);
}

ZQSIM_HOOK ssize_t recvfrom(int descriptor, void* buffer, size_t size, int flags, sockaddr* from,
                            socklen_t* length) {
  if (!IsNews(descriptor)) return NEXT(recvfrom)(descriptor, buffer, size, flags, from, length);
  return ReceiveFrom(descriptor, buffer, size, flags, from, length);
}

ZQSIM_HOOK ssize_t __recvfrom_chk(int descriptor, void* buffer, size_t size, size_t room, int flags,
                                  sockaddr* from, socklen_t* length) {
  if (!IsNews(descriptor)) {
    return NEXT(__recvfrom_chk)(descriptor, buffer, size, room, flags, from, length);
  }
  return ReceiveFrom(descriptor, buffer, size < room ? size : room, flags, from, length);
}

ZQSIM_HOOK ssize_t recvmsg(int descriptor, msghdr* message, int flags) {
  if (!IsNews(descriptor)) return NEXT(recvmsg)(descriptor, message, flags);
  if (message->msg_iovlen == 0) {
    errno = EINVAL;
    return -1;
  }
  // Into the first of the buffers alone, which programs make large enough.
  const ssize_t received =
      ReceiveInterfaceNews(descriptor, message->msg_iov->iov_base, message->msg_iov->iov_len, flags);
  if (received < 0) return -1;
  PutKernel(message->msg_name, message->msg_name != nullptr ? &message->msg_namelen : nullptr);
  message->msg_controllen = 0;
  message->msg_flags = 0;
  return received;
}
