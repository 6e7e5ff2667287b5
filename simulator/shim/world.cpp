#include "world.h"

#include <sched.h>
#include <unistd.h>

#include <atomic>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace {

enum State : int { kUnread, kReading, kNoDevice, kDevice };

// Copies, because a process may overwrite the memory that its environment was in.
struct World {
  char root[PATH_MAX];
  char hostPaths[16 * 1024];
  DeviceView view;
};

constinit std::atomic<int> state{kUnread};
constinit World world{};

State Read() {
  const char* root = getenv("ZQ_DEVICE");
  if (root == nullptr || root[0] != '/') return kNoDevice;
  size_t length = strlen(root);
  while (length > 0 && root[length - 1] == '/') --length;
  if (length == 0 || length >= sizeof(world.root)) return kNoDevice;
  memcpy(world.root, root, length);
  world.view.root = {world.root, length};

  const char* hosts = getenv("ZQ_SIM_HOST_PATHS");
  size_t hostLength = hosts == nullptr ? 0 : strlen(hosts);
  if (hostLength > sizeof(world.hostPaths)) {
    // Whole entries only: half a path would be another path.
    hostLength = sizeof(world.hostPaths);
    while (hostLength > 0 && hosts[hostLength] != ':') --hostLength;
  }
  if (hostLength > 0) memcpy(world.hostPaths, hosts, hostLength);
  world.view.hostPaths = {world.hostPaths, hostLength};
  return kDevice;
}

int ReadOnce() {
  if (environ == nullptr) return kNoDevice;
  int expected = kUnread;
  if (state.compare_exchange_strong(expected, kReading)) state.store(Read(), std::memory_order_release);
  int now = state.load(std::memory_order_acquire);
  while (now == kReading) {
    sched_yield();
    now = state.load(std::memory_order_acquire);
  }
  return now;
}

[[gnu::constructor]] void ReadEarly() {
  ReadOnce();
}

}  // namespace

const DeviceView* CurrentView() {
  int now = state.load(std::memory_order_acquire);
  if (now < kNoDevice) now = ReadOnce();
  return now == kDevice ? &world.view : nullptr;
}
