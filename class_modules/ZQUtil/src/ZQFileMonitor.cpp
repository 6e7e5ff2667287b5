#include "ZQFileMonitor.h"

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <exception>
#include <map>
#include <memory>
#include <mutex>

#include "ZQUtilTrace.h"
#include "zq_thread.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQFileMonitor";

using Callback = void (*)(char const*);

// The text of an error number, as long as the object lives.
class ErrorText {
 public:
  explicit ErrorText(int error) : text_(strerror_r(error, buffer_, sizeof buffer_)) {}
  const char* Get() const { return text_; }

 private:
  char buffer_[128] = {};
  const char* text_;
};

struct Registry {
  std::mutex mutex;
  std::map<int, _fileMonitor*> monitors;  // by watch
  std::atomic<int> inotify = -1;

  // The first, in the order of watches, with this path and callback.
  std::map<int, _fileMonitor*>::iterator Find(char const* path, Callback callback) {
    auto place = monitors.begin();
    while (place != monitors.end() &&
           (std::strcmp(place->second->path, path) != 0 || place->second->callback != callback)) {
      ++place;
    }
    return place;
  }
};

// Never destroyed: the thread reads it until the process is gone.
Registry& TheRegistry() {
  static auto* const registry = new Registry;
  return *registry;
}

void StartMonitor(Registry& registry) {
  ZQUTIL_TRACE("FileMonitor: Starting File Monitor\n");
  const int inotify = inotify_init1(IN_CLOEXEC);
  if (inotify < 0) {
    ZQUTIL_TRACE("FileMonitor: failed to init intoify (%s)\n", ErrorText(errno).Get());
    return;
  }
  registry.inotify = inotify;
  if (zq__beginthread(threadFileMonitor, nullptr, nullptr, kSourceTag, __LINE__) != 0) return;
  // Without a thread there are no monitors; the next registration tries again.
  registry.inotify = -1;
  close(inotify);
}

// Takes the new record's place in the registry, and that of an older record of the same file.
void Add(Registry& registry, std::unique_ptr<_fileMonitor> monitor) {
  _fileMonitor*& place = registry.monitors[monitor->watch];
  delete place;
  place = monitor.release();
}

void OnEvent(int watch) {
  _fileMonitor found = {};
  {
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    const auto place = registry.monitors.find(watch);
    if (place != registry.monitors.end()) found = *place->second;
  }
  if (found.callback != nullptr) {
    found.callback(found.path);
  } else {
    ZQUTIL_TRACE("FileMonitor: ++ watch id not found in map ++\n");
  }
}

// Each event begins with a header, and a name may follow.
void OnEvents(const char* bytes, ssize_t count) {
  inotify_event header = {};
  while (count >= static_cast<ssize_t>(sizeof header)) {
    std::memcpy(&header, bytes, sizeof header);
    OnEvent(header.wd);
    const size_t length = sizeof header + header.len;
    bytes += length;
    count -= static_cast<ssize_t>(length);
  }
}

}  // namespace

void registerFileMonitor(char const* path, void (*callback)(char const*)) try {
  if (path == nullptr || callback == nullptr) {
    ZQUTIL_TRACE("FileMonitor: Malformed register request\n");
    return;
  }
  struct stat status = {};
  if (stat(path, &status) != 0) {
    ZQUTIL_TRACE("FileMonitor: File '%s' not found - ignoring request\n", path);
    return;
  }
  Registry& registry = TheRegistry();
  // Held over the watch's beginning: its first event finds the record.
  const std::lock_guard lock(registry.mutex);
  if (registry.inotify < 0) StartMonitor(registry);
  if (registry.Find(path, callback) != registry.monitors.end()) {
    ZQUTIL_TRACE("FileMonitor: Monitor already registered for '%s'\n", path);
    return;
  }
  auto monitor = std::make_unique<_fileMonitor>();
  std::snprintf(monitor->path, sizeof monitor->path, "%s", path);
  monitor->callback = callback;
  monitor->watch = inotify_add_watch(registry.inotify, path, IN_MODIFY);
  if (monitor->watch < 0) {
    ZQUTIL_TRACE("FileMonitor: failed to start monitoring for '%s' (%s)\n", path, ErrorText(errno).Get());
    return;
  }
  Add(registry, std::move(monitor));
  ZQUTIL_TRACE("FileMonitor: monitoring started for '%s'\n", path);
} catch (const std::exception&) {
  ZQUTIL_TRACE("FileMonitor: no memory\n");
}

void deregisterFileMonitor(char const* path, void (*callback)(char const*)) {
  if (path == nullptr || callback == nullptr) {
    ZQUTIL_TRACE("FileMonitor: Malformed deregister request\n");
    return;
  }
  Registry& registry = TheRegistry();
  const std::lock_guard lock(registry.mutex);
  const auto place = registry.Find(path, callback);
  if (place == registry.monitors.end()) return;
  if (inotify_rm_watch(registry.inotify, place->first) != 0) {
    ZQUTIL_TRACE("FileMonitor: failed to remove monitor for '%s' (%s)\n", path, ErrorText(errno).Get());
  }
  delete place->second;
  registry.monitors.erase(place);
}

int32_t threadFileMonitor(void* /*ignored*/) {
  const std::atomic<int>& inotify = TheRegistry().inotify;
  char header[sizeof(inotify_event)];
  char whole[sizeof(inotify_event) + NAME_MAX + 1];
  for (;;) {
    ssize_t count = read(inotify, header, sizeof header);
    if (count < 0) {
      if (errno == EINTR) continue;
      const int error = errno;
      ZQUTIL_TRACE("FileMonitor: failed to read inotify handle (%s)\n",
                   strerror_r(error, header, sizeof header));
      // An event with a name, from a folder's monitor, does not fit; it would be refused for ever.
      if (error != EINVAL) continue;
      count = read(inotify, whole, sizeof whole);
      OnEvents(whole, count);
      continue;
    }
    OnEvents(header, count);
  }
}
