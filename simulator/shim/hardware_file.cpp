#include "hardware_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <climits>
#include <cstring>

#include "world.h"

namespace {

// A file of the device's on this machine; Text() is null when there is no device or no room for the path.
class HardwarePath {
 public:
  explicit HardwarePath(const char* name, const char* suffix = "") {
    const DeviceView* const view = CurrentView();
    if (view == nullptr) return;
    size_t length = 0;
    for (const std::string_view part : {view->root, std::string_view(name), std::string_view(suffix)}) {
      if (part.size() >= sizeof(path_) - length) return;
      memcpy(path_ + length, part.data(), part.size());
      length += part.size();
    }
    path_[length] = '\0';
    text_ = path_;
  }
  HardwarePath(const HardwarePath&) = delete;
  HardwarePath& operator=(const HardwarePath&) = delete;
  const char* Text() const { return text_; }

 private:
  char path_[PATH_MAX];
  const char* text_ = nullptr;
};

// -1 on failure.
long OpenHardware(const HardwarePath& path, int flags) {
  if (path.Text() == nullptr) return -1;
  return syscall(SYS_openat, AT_FDCWD, path.Text(), flags | O_CLOEXEC, 0644);
}

bool WriteAndClose(long file, std::string_view text) {
  if (file < 0) return false;
  const long written = syscall(SYS_write, file, text.data(), text.size());
  syscall(SYS_close, file);
  return written == static_cast<long>(text.size());
}

}  // namespace

size_t ReadHardware(const char* name, char* buffer, size_t size) {
  const long file = OpenHardware(HardwarePath(name), O_RDONLY);
  if (file < 0) return 0;
  const long length = syscall(SYS_read, file, buffer, size);
  syscall(SYS_close, file);
  return length > 0 ? static_cast<size_t>(length) : 0;
}

bool HasHardware(const char* name) {
  return HardwareChangedAt(name) != kNoFile;
}

int64_t HardwareChangedAt(const char* name) {
  const HardwarePath path(name);
  return path.Text() != nullptr ? FileChangedAt(path.Text()) : kNoFile;
}

int64_t FileChangedAt(const char* place) {
  struct statx facts;
  if (syscall(SYS_statx, AT_FDCWD, place, 0, STATX_MTIME, &facts) != 0) return kNoFile;
  return facts.stx_mtime.tv_sec * 1'000'000'000 + facts.stx_mtime.tv_nsec;
}

bool ReplaceHardware(const char* name, std::string_view text) {
  const HardwarePath place(name);
  const HardwarePath draft(name, ".new");
  if (!WriteAndClose(OpenHardware(draft, O_WRONLY | O_CREAT | O_TRUNC), text)) return false;
  return syscall(SYS_renameat2, AT_FDCWD, draft.Text(), AT_FDCWD, place.Text(), 0) == 0;
}

bool WatchHardware(int watch, const char* name, uint32_t events) {
  const HardwarePath path(name);
  return path.Text() != nullptr && syscall(SYS_inotify_add_watch, watch, path.Text(), events) >= 0;
}

void AppendHardware(const char* name, std::string_view text) {
  WriteAndClose(OpenHardware(HardwarePath(name), O_WRONLY | O_APPEND), text);
}
