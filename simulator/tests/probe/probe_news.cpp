// Notices about network interfaces, and calls that would change the machine.
#include <fcntl.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/reboot.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/timex.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <ctime>
#include <limits>

#include "probe.h"

namespace {

// Changes the file of a device's interface, and is true when a notice of it is received.
template <typename Receive>
bool Hears(Receive receive) {
  const int news = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE);
  sockaddr_nl address{};
  address.nl_family = AF_NETLINK;
  address.nl_groups = RTMGRP_LINK;
  char notice[4096];
  bool heard = bind(news, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
  heard = heard && receive(news, notice, sizeof(notice)) < 0 && errno == EAGAIN;
  const int file = open(Place("/hw/eth0.ini").c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
  close(file);
  heard = heard && receive(news, notice, sizeof(notice)) > 0;
  close(news);
  return heard;
}

bool HearsByRecv() {
  return Hears([](int news, void* buffer, size_t size) { return recv(news, buffer, size, 0); });
}

bool HearsByRecvfrom() {
  return Hears(
      [](int news, void* buffer, size_t size) { return recvfrom(news, buffer, size, 0, nullptr, nullptr); });
}

bool HearsByRecvmsg() {
  return Hears([](int news, void* buffer, size_t size) {
    iovec part{buffer, size};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    return recvmsg(news, &message, 0);
  });
}

bool HearsByCheckedRecv() {
  return Hears([](int news, void* buffer, size_t size) {
    return Symbol<ssize_t(int, void*, size_t, size_t, int)>("__recv_chk")(news, buffer, size, size, 0);
  });
}

bool HearsByCheckedRecvfrom() {
  return Hears([](int news, void* buffer, size_t size) {
    return Symbol<ssize_t(int, void*, size_t, size_t, int, sockaddr*, socklen_t*)>("__recvfrom_chk")(
        news, buffer, size, size, 0, nullptr, nullptr);
  });
}

// The arguments are such that the machine would refuse them for another reason.
bool IsRefused(int result) {
  return result == -1 && errno == EOPNOTSUPP;
}

bool RefusesClockSettime() {
  const timespec never{0, -1};
  return IsRefused(clock_settime(CLOCK_REALTIME, &never));
}

bool RefusesSettimeofday() {
  const timeval never{0, -1};
  return IsRefused(settimeofday(&never, nullptr));
}

bool RefusesAdjtime() {
  const timeval never{std::numeric_limits<time_t>::max(), 0};
  return IsRefused(adjtime(&never, nullptr));
}

timex NoSetting() {
  timex setting{};
  setting.modes = ADJ_TICK;
  setting.tick = -1;
  return setting;
}

bool RefusesAdjtimex() {
  timex setting = NoSetting();
  return IsRefused(adjtimex(&setting));
}

bool RefusesClockAdjtime() {
  timex setting = NoSetting();
  return IsRefused(clock_adjtime(CLOCK_REALTIME, &setting));
}

bool RefusesReboot() {
  return IsRefused(reboot(-1));
}

bool RefusesSethostname() {
  static constexpr char kTooLong[1000] = {};
  return IsRefused(sethostname(kTooLong, sizeof(kTooLong)));
}

constexpr ProbeRow kRows[] = {
    {"__recv_chk", HearsByCheckedRecv},
    {"__recvfrom_chk", HearsByCheckedRecvfrom},
    {"adjtime", RefusesAdjtime},
    {"adjtimex", RefusesAdjtimex},
    {"bind", HearsByRecv},
    {"clock_adjtime", RefusesClockAdjtime},
    {"clock_settime", RefusesClockSettime},
    {"reboot", RefusesReboot},
    {"recv", HearsByRecv},
    {"recvfrom", HearsByRecvfrom},
    {"recvmsg", HearsByRecvmsg},
    {"sethostname", RefusesSethostname},
    {"settimeofday", RefusesSettimeofday},
    {"socket", HearsByRecv},
};

}  // namespace

std::span<const ProbeRow> NewsRows() {
  return kRows;
}
