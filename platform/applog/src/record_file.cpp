#include "record_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace {

class File {
 public:
  explicit File(const std::string& path)
      : descriptor_(open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0640)) {}
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() {
    if (descriptor_ >= 0) close(descriptor_);
  }

  bool Opened() const { return descriptor_ >= 0; }
  size_t Size() const {
    struct stat status {};
    return fstat(descriptor_, &status) == 0 ? static_cast<size_t>(status.st_size) : 0;
  }
  // All of it or nothing: half a line would become the beginning of the next one. Sets errno on failure.
  bool Append(const std::string& bytes) const {
    const size_t before = Size();
    size_t written = 0;
    while (written < bytes.size()) {
      const ssize_t now = write(descriptor_, bytes.data() + written, bytes.size() - written);
      if (now < 0 && errno == EINTR) continue;
      if (now < 0) {
        const int error = errno;
        // A disk that refuses this, too, keeps the half.
        [[maybe_unused]] const int undone = ftruncate(descriptor_, static_cast<off_t>(before));
        errno = error;
        return false;
      }
      written += static_cast<size_t>(now);
    }
    return true;
  }

 private:
  int descriptor_;
};

bool Append(const std::string& path, const std::string& lines) {
  const File file(path);
  return file.Opened() && file.Append(lines);
}

}  // namespace

bool AppendRecords(const std::string& path, const std::string& lines) {
  {
    const File file(path);
    if (!file.Opened()) return false;
    const size_t size = file.Size();
    if (size == 0 || size + lines.size() <= kMaxFile) return file.Append(lines);
  }
  return rename(path.c_str(), (path + ".1").c_str()) == 0 && Append(path, lines);
}
