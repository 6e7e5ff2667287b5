#include "copy_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace {

// A file of this name is a device even while it is absent.
bool IsDevicePath(const std::string& path) {
  return path.starts_with("/dev/");
}

std::string Reason(const std::string& path, const char* what, int error) {
  return std::string(what) + " " + path + ": " + std::strerror(error);
}

// Bytes read; fewer at the end of the file; -1 with errno.
ssize_t ReadAt(int fd, uint8_t* bytes, size_t count, int64_t offset) {
  size_t done = 0;
  while (done < count) {
    const ssize_t got = pread(fd, bytes + done, count - done, offset + static_cast<int64_t>(done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return -1;
    if (got == 0) break;
    done += static_cast<size_t>(got);
  }
  return static_cast<ssize_t>(done);
}

bool WriteAt(int fd, std::span<const uint8_t> bytes, int64_t offset) {
  size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t put =
        pwrite(fd, bytes.data() + done, bytes.size() - done, offset + static_cast<int64_t>(done));
    if (put < 0 && errno == EINTR) continue;
    if (put == 0) errno = ENOSPC;
    if (put <= 0) return false;
    done += static_cast<size_t>(put);
  }
  return true;
}

}  // namespace

CopyReading ReadCopy(const CopyPlace& place, bool redundant) {
  struct stat status {};
  if (stat(place.path.c_str(), &status) != 0) {
    const bool absent = errno == ENOENT && !IsDevicePath(place.path);
    return {absent ? CopyState::Missing : CopyState::Unusable, {}, Reason(place.path, "cannot read", errno)};
  }
  if (S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode))
    return {CopyState::Device, {}, place.path + " is a device"};
  if (S_ISDIR(status.st_mode)) return {CopyState::Unusable, {}, Reason(place.path, "cannot read", EISDIR)};
  if (!S_ISREG(status.st_mode))
    return {CopyState::Unusable, {}, place.path + " is neither a file nor a device"};
  if (place.offset < 0)
    return {CopyState::Unusable, {}, place.path + ": only a device can be counted from its end"};

  const int fd = open(place.path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return {CopyState::Unusable, {}, Reason(place.path, "cannot read", errno)};
  CopyReading reading{CopyState::Good, Bytes(place.size), {}};
  const ssize_t count = ReadAt(fd, reading.image.data(), place.size, place.offset);
  const int error = errno;
  close(fd);
  if (count < 0) return {CopyState::Unusable, {}, Reason(place.path, "cannot read", error)};
  if (static_cast<size_t>(count) < place.size)
    return {CopyState::Unusable, {}, place.path + " is shorter than its copy"};
  if (!IsWhole(reading.image, redundant)) {
    reading.state = CopyState::Damaged;
    reading.why = place.path + " is damaged";
  } else if (!IsReadable(reading.image, redundant)) {
    reading.state = CopyState::Unusable;
    reading.why = place.path + " holds no readable texts";
  }
  return reading;
}

std::string MakeCopy(const CopyPlace& place, const Bytes& image, const std::string& like) {
  struct stat status {};
  const mode_t mode = stat(like.c_str(), &status) == 0 ? status.st_mode & 07777U : 0600U;
  const std::string temporary = place.path + ".new";
  const std::string folder = std::filesystem::path(place.path).parent_path();
  unlink(temporary.c_str());
  const int fd = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
  if (fd < 0) return Reason(place.path, "cannot make", errno);
  const bool written = WriteAt(fd, image, place.offset) && fchmod(fd, mode) == 0 && fsync(fd) == 0;
  int error = errno;
  const bool closed = close(fd) == 0;
  if (written && !closed) error = errno;
  if (!written || !closed || rename(temporary.c_str(), place.path.c_str()) != 0) {
    if (written && closed) error = errno;
    unlink(temporary.c_str());
    return Reason(place.path, "cannot make", error);
  }
  const int folderFd = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const bool synced = folderFd >= 0 && fsync(folderFd) == 0;
  error = errno;
  if (folderFd >= 0) close(folderFd);
  return synced ? std::string() : Reason(place.path, "cannot make", error);
}

OpenCopy::OpenCopy(const CopyPlace& place)
    : place_(place), fd_(open(place.path.c_str(), O_RDWR | O_CLOEXEC)) {
  reason_ = errno;
}

OpenCopy::~OpenCopy() {
  if (fd_ >= 0) close(fd_);
}

std::string OpenCopy::Why(const char* what) const {
  return Reason(place_.path, what, fd_ < 0 ? reason_ : errno);
}

// The header last: texts that were written in part have no header that fits them, so a copy whose writing
// failed is not taken for good, even when nothing more can be written.
std::string OpenCopy::Write(const Bytes& image) const {
  const size_t header = HeaderSize(true);
  const std::span<const uint8_t> bytes = image;
  if (fd_ < 0 || !WriteAt(fd_, bytes.subspan(header), place_.offset + static_cast<int64_t>(header)) ||
      !WriteAt(fd_, bytes.first(header), place_.offset))
    return Why("cannot write");
  return Sync();
}

std::string OpenCopy::Sync() const {
  if (fd_ >= 0 && fsync(fd_) == 0) return {};
  return Why("cannot write");
}
