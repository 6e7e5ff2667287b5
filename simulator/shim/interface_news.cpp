#include "interface_news.h"

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if_arp.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "device_interfaces.h"
#include "hardware_file.h"

namespace {

constexpr uint32_t kChanges = IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | IN_CREATE;
constexpr char kFolder[] = "/hw";
constexpr char kRadioFolder[] = "/hw/ra0";

struct Notice {
  nlmsghdr header;
  ifinfomsg link;
  rtattr nameHeader;
  char name[kInterfaceLabel];
};

// A draft beside a file, another hardware file: no news.
bool IsNews(const inotify_event& event) {
  constexpr std::string_view kNames[] = {"eth0.ini", "link.ini", "ra0"};
  if ((event.mask & IN_Q_OVERFLOW) != 0) return true;
  const std::string_view name = event.len > 0 ? event.name : "";
  for (const std::string_view known : kNames) {
    if (name == known) return true;
  }
  return false;
}

// Reads what inotify has. 1 when it is news, 0 when it is not, -1 and errno when nothing is there.
int ReadChanges(int news) {
  alignas(inotify_event) char events[4096];
  const long length = syscall(SYS_read, news, events, sizeof(events));
  if (length <= 0) return -1;
  bool found = false;
  for (long at = 0; at < length;) {
    inotify_event event;
    memcpy(&event, events + at, sizeof(event));
    found = found || IsNews(*reinterpret_cast<const inotify_event*>(events + at));
    at += static_cast<long>(sizeof(event) + event.len);
  }
  return found ? 1 : 0;
}

void FillNotice(const DeviceInterface& interface, const InterfaceState& state, Notice* notice) {
  *notice = {};
  notice->header.nlmsg_len = sizeof(*notice);
  notice->header.nlmsg_type = RTM_NEWLINK;
  notice->link.ifi_family = AF_UNSPEC;
  notice->link.ifi_type = interface.file == nullptr ? ARPHRD_LOOPBACK : ARPHRD_ETHER;
  notice->link.ifi_index = interface.index;
  notice->link.ifi_flags = static_cast<unsigned short>(FlagsOf(interface, state));
  notice->link.ifi_change = ~0U;
  notice->nameHeader.rta_type = IFLA_IFNAME;
  notice->nameHeader.rta_len = sizeof(notice->nameHeader) + sizeof(notice->name);
  memcpy(notice->name, interface.name, strlen(interface.name));
}

ssize_t FillNotices(void* buffer, size_t size) {
  size_t used = 0;
  for (const DeviceInterface& interface : DeviceInterfaces()) {
    InterfaceState state;
    if (!ReadInterface(interface, &state)) continue;
    Notice notice;
    FillNotice(interface, state, &notice);
    const size_t room = size - used < sizeof(notice) ? size - used : sizeof(notice);
    memcpy(static_cast<char*>(buffer) + used, &notice, room);
    used += room;
  }
  return static_cast<ssize_t>(used);
}

bool IsReadable(int news) {
  pollfd wait{news, POLLIN, 0};
  const timespec none{};
  return syscall(SYS_ppoll, &wait, 1, &none, nullptr, 0) > 0;
}

}  // namespace

int OpenInterfaceNews(int type) {
  int flags = 0;
  if ((type & SOCK_NONBLOCK) != 0) flags |= IN_NONBLOCK;
  if ((type & SOCK_CLOEXEC) != 0) flags |= IN_CLOEXEC;
  return static_cast<int>(syscall(SYS_inotify_init1, flags));
}

void WatchInterfaces(int news) {
  const int before = errno;
  WatchHardware(news, kFolder, kChanges);
  // Put in later, the radio's folder is news by itself.
  WatchHardware(news, kRadioFolder, kChanges);
  errno = before;
}

ssize_t ReceiveInterfaceNews(int news, void* buffer, size_t size, int flags) {
  const int before = errno;
  for (;;) {
    if ((flags & MSG_DONTWAIT) != 0 && !IsReadable(news)) {
      errno = EAGAIN;
      return -1;
    }
    const int found = ReadChanges(news);
    if (found < 0) return -1;
    if (found == 0) continue;
    WatchInterfaces(news);
    errno = before;
    return FillNotices(buffer, size);
  }
}
