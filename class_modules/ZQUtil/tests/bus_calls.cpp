#include "bus_calls.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <linux/i2c-dev.h>
#include <linux/i2c.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <mutex>
#include <utility>

namespace {

std::atomic<bool> g_recording = false;
std::mutex g_mutex;
std::string g_calls;
constexpr int kDescriptors = 1024;
std::atomic<const char*> g_open[kDescriptors];  // path by descriptor
std::atomic<long> g_reads = 0;
std::atomic<void (*)()> g_atSelection = nullptr;
std::atomic<bool> g_refuseLevels = false;

void Note(const std::string& line) {
  if (!g_recording) return;
  const std::lock_guard lock(g_mutex);
  g_calls += line + "\n";
}

std::atomic<const char*>* PathOf(int descriptor) {
  return descriptor >= 0 && descriptor < kDescriptors ? &g_open[descriptor] : nullptr;
}

std::string TransferText(const i2c_smbus_ioctl_data& transfer) {
  const bool reads = transfer.read_write == I2C_SMBUS_READ;
  std::string text = std::string(reads ? "read " : "write ") + std::to_string(transfer.command) + " " +
                     std::to_string(transfer.size) + ":";
  for (int i = 0; i < (reads ? 1 : 5); ++i) text += " " + std::to_string(transfer.data->block[i]);
  return text;
}

}  // namespace

BusCalls::BusCalls() {
  Take();
  g_recording = true;
}

BusCalls::~BusCalls() {
  g_recording = false;
}

std::string BusCalls::Take() {
  const std::lock_guard lock(g_mutex);
  return std::exchange(g_calls, "");
}

long BusReads() {
  return g_reads;
}

void AtNextSelection(void (*action)()) {
  g_atSelection = action;
}

void RefuseLevels(bool refuse) {
  g_refuseLevels = refuse;
}

// The function that a recorded one stands before.
#define NEXT(function, type) static const auto next = reinterpret_cast<type>(dlsym(RTLD_NEXT, #function))
#define RECORDED extern "C" __attribute__((visibility("default")))

RECORDED int open(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const auto mode = va_arg(rest, mode_t);
  va_end(rest);
  NEXT(open, int (*)(const char*, int, ...));
  const int descriptor = next(path, flags, mode);
  for (const char* const watched : {"/dev/i2c-0", "/proc/blctrl"}) {
    if (std::strcmp(path, watched) != 0) continue;
    Note("open " + std::string(watched) + " " + std::to_string(flags & ~O_CLOEXEC));
    if (auto* const slot = PathOf(descriptor)) *slot = watched;
  }
  return descriptor;
}

RECORDED int close(int descriptor) {
  auto* const slot = PathOf(descriptor);
  const char* const path = slot != nullptr ? slot->exchange(nullptr) : nullptr;
  if (path != nullptr) Note("close " + std::string(path));
  NEXT(close, int (*)(int));
  return next(descriptor);
}

RECORDED int ioctl(int descriptor, unsigned long request, ...) noexcept {
  va_list rest;
  va_start(rest, request);
  void* const argument = va_arg(rest, void*);
  va_end(rest);
  if (request == I2C_SLAVE) {
    Note("select " + std::to_string(reinterpret_cast<unsigned long>(argument)));
    if (const auto action = g_atSelection.exchange(nullptr)) action();
  }
  if (request == I2C_SMBUS) {
    const auto& transfer = *static_cast<const i2c_smbus_ioctl_data*>(argument);
    if (transfer.read_write == I2C_SMBUS_READ) ++g_reads;
    if (g_recording) Note(TransferText(transfer));
  }
  NEXT(ioctl, int (*)(int, unsigned long, ...));
  return next(descriptor, request, argument);
}

RECORDED ssize_t write(int descriptor, const void* bytes, size_t count) {
  const auto* const slot = PathOf(descriptor);
  if (slot != nullptr && *slot != nullptr) {
    Note("level " + std::to_string(count) + ": " + static_cast<const char*>(bytes));
    if (g_refuseLevels) {
      errno = EIO;
      return -1;
    }
  }
  NEXT(write, ssize_t(*)(int, const void*, size_t));
  return next(descriptor, bytes, count);
}
