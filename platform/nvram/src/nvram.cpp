#include "nvram.h"

#include <climits>
#include <condition_variable>
#include <cstring>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "store.h"
#include "zq_trace.h"

namespace {

// The one handle that a process has open: the store's lock admits no second.
struct Desk {
  std::mutex mutex;
  std::condition_variable left;
  bool taken = false;      // also while the store is being opened
  std::thread::id holder;  // who took it
  std::unique_ptr<Store> store;
  int handle = INT_MAX;  // of the store; counts up, so that handles of closed stores are refused

  bool IsOpen(int which) const { return store && handle == which; }
};

// Never destroyed: threads may still be at work while the process ends.
Desk& TheDesk() {
  static Desk& desk = *new Desk;
  return desk;
}

constexpr char kMissing[] = "it is not in the store";

int Fail(const char* what, const char* key, const std::string& why) {
  // Programs ask for keys that nobody has set yet: no cause for concern.
  const int level = why == kMissing ? ZQ_TRACE_NORMAL : ZQ_TRACE_FAILURE;
  zq_Trace(0, level, 1, true, "nvram: cannot %s%s%s: %s", what, *key != '\0' ? " " : "", key, why.c_str());
  return -1;
}

bool Take(Desk& desk) {
  std::unique_lock lock(desk.mutex);
  if (desk.taken && desk.holder == std::this_thread::get_id()) return false;
  desk.left.wait(lock, [&desk] { return !desk.taken; });
  desk.taken = true;
  desk.holder = std::this_thread::get_id();
  return true;
}

void Leave(Desk& desk) {
  desk.store.reset();
  desk.taken = false;
  desk.left.notify_one();
}

// Runs `action` on the handle's store; it returns why it failed, or "".
template <class Action>
int With(int handle, const char* what, const char* key, Action action) {
  if (key == nullptr) return Fail(what, "", "the key is null");
  try {
    Desk& desk = TheDesk();
    const std::lock_guard lock(desk.mutex);
    if (!desk.IsOpen(handle)) return Fail(what, key, "the handle is not open");
    const std::string why = action(*desk.store);
    return why.empty() ? 0 : Fail(what, key, why);
  } catch (const std::exception& error) {
    return Fail(what, key, error.what());
  }
}

}  // namespace

int nvram_open(int mode, int flags) {
  if (mode != 0 || flags != 0) return Fail("open", "", "mode and flags are not 0");
  try {
    Desk& desk = TheDesk();
    if (!Take(desk)) return Fail("open", "", "this thread has it open already");
    std::string why;
    std::unique_ptr<Store> store;
    try {
      store = Store::Open(StoreConfigPath(), why);
    } catch (const std::exception& error) {
      why = error.what();
    }
    const std::lock_guard lock(desk.mutex);
    if (!store) {
      Leave(desk);
      return Fail("open", "", why);
    }
    desk.store = std::move(store);
    desk.handle = desk.handle == INT_MAX ? 0 : desk.handle + 1;
    return desk.handle;
  } catch (const std::exception& error) {
    return Fail("open", "", error.what());
  }
}

int nvram_read_key(int handle, void* /*reserved*/, const char* key, char* buffer, size_t size) {
  return With(handle, "read", key, [=](const Store& store) -> std::string {
    if (buffer == nullptr || size == 0) return "there is no buffer";
    const std::optional<std::string> value = store.Get(key);
    if (!value) return kMissing;
    const size_t length = value->copy(buffer, size - 1);
    buffer[length] = '\0';
    return {};
  });
}

int nvram_write_key(int handle, void* /*reserved*/, const char* key, const char* value) {
  return With(handle, "write", key, [=](Store& store) -> std::string {
    return value == nullptr ? "the value is null" : store.Set(key, value);
  });
}

int nvram_erase_key(int handle, void* /*reserved*/, const char* key) {
  return With(handle, "erase", key, [=](Store& store) { return store.Erase(key); });
}

int nvram_close(int handle) {
  Desk& desk = TheDesk();
  const std::lock_guard lock(desk.mutex);
  if (!desk.IsOpen(handle)) return Fail("close", "", "the handle is not open");
  Leave(desk);
  return 0;
}
