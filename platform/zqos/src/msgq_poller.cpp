#include "msgq_poller.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>

namespace {

constexpr uint64_t kWakerKey = UINT64_MAX;

bool Control(int epoll, int operation, int fd, uint32_t events, uint64_t key) {
  epoll_event event{};
  event.events = events;
  event.data.u64 = key;
  return epoll_ctl(epoll, operation, fd, &event) == 0;
}

}  // namespace

// The waker is edge-triggered, so that nobody has to read it empty: each write is an event of its own.
MsgqPoller::MsgqPoller()
    : epoll_(epoll_create1(EPOLL_CLOEXEC)),
      waker_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)),
      open_(epoll_.IsOpen() && waker_.IsOpen() &&
            Control(epoll_.Get(), EPOLL_CTL_ADD, waker_.Get(), EPOLLIN | EPOLLET, kWakerKey)) {}

void MsgqPoller::Wake() const {
  eventfd_write(waker_.Get(), 1);
}

bool MsgqPoller::Watch(int fd, uint32_t events, uint64_t key) const {
  return Control(epoll_.Get(), EPOLL_CTL_ADD, fd, events, key);
}

bool MsgqPoller::Change(int fd, uint32_t events, uint64_t key) const {
  return Control(epoll_.Get(), EPOLL_CTL_MOD, fd, events, key);
}

void MsgqPoller::Forget(int fd) const {
  Control(epoll_.Get(), EPOLL_CTL_DEL, fd, 0, 0);
}

std::span<const MsgqPoller::Event> MsgqPoller::Wait(int milliseconds) {
  epoll_event events[kMost];
  const int count = epoll_wait(epoll_.Get(), events, kMost, milliseconds);
  size_t used = 0;
  for (int i = 0; i < count; ++i) {
    if (events[i].data.u64 != kWakerKey) happened_[used++] = {events[i].data.u64, events[i].events};
  }
  return {happened_, used};
}
