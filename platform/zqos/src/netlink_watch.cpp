#include "netlink_watch.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>
#include <memory>
#include <new>
#include <system_error>

#include "platform_trace.h"

namespace {

// Empty for an address that is neither IPv4 nor IPv6.
std::string AddressText(const sockaddr* address) {
  if (address == nullptr) return {};
  char text[INET6_ADDRSTRLEN] = "";
  if (address->sa_family == AF_INET) {
    inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(address)->sin_addr, text, sizeof text);
  } else if (address->sa_family == AF_INET6) {
    inet_ntop(AF_INET6, &reinterpret_cast<const sockaddr_in6*>(address)->sin6_addr, text, sizeof text);
  }
  return text;
}

std::string ErrorText(int error) {
  return std::generic_category().message(error);
}

}  // namespace

bool NetlinkWatch::Open() {
  socket_.emplace(socket(AF_NETLINK, SOCK_RAW | SOCK_NONBLOCK | SOCK_CLOEXEC, NETLINK_ROUTE));
  sockaddr_nl address{};
  address.nl_family = AF_NETLINK;
  address.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR;
  if (!socket_->IsOpen() ||
      bind(socket_->Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    PlatformFailure("changes of the network interfaces cannot be watched: %s", ErrorText(errno).c_str());
    socket_.reset();
    return false;
  }
  // After the socket: a change between the two is a notice and a difference that is none, not one missed.
  last_ = Take();
  return true;
}

NetlinkWatch::News NetlinkWatch::Read() {
  // The notices' bytes are not looked at: the snapshot says what is. Bounded, so that a storm of notices
  // cannot keep the thread here; what is left makes the descriptor readable again.
  char notice[8192];
  for (int i = 0; i < 256; ++i) {
    if (recv(socket_->Get(), notice, sizeof notice, MSG_DONTWAIT) >= 0) continue;
    if (errno == EAGAIN) break;
    // ENOBUFS: notices were lost, which is news as well.
    if (errno == EINTR || errno == ENOBUFS || errno == ENOMEM) continue;
    PlatformFailure("changes of the network interfaces are not seen any more: %s", ErrorText(errno).c_str());
    return News::kBroken;
  }
  std::optional<Snapshot> now = Take();
  // Better news of nothing than a missed change.
  const bool same = now && now == last_;
  last_ = std::move(now);
  return same ? News::kNone : News::kChanged;
}

std::optional<NetlinkWatch::Snapshot> NetlinkWatch::Take() try {
  ifaddrs* list = nullptr;
  if (getifaddrs(&list) != 0) return std::nullopt;
  const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> owner(list, &freeifaddrs);
  Snapshot lines;
  for (const ifaddrs* at = list; at != nullptr; at = at->ifa_next) {
    lines.insert(std::string(at->ifa_name) + ((at->ifa_flags & IFF_UP) != 0 ? " up" : "") +
                 ((at->ifa_flags & IFF_RUNNING) != 0 ? " running" : ""));
    const std::string address = AddressText(at->ifa_addr);
    if (!address.empty()) {
      lines.insert(std::string(at->ifa_name) + " " + address + "/" + AddressText(at->ifa_netmask));
    }
  }
  return lines;
} catch (const std::bad_alloc&) {
  return std::nullopt;
}
