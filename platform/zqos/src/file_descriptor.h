// Owns a file descriptor.
#ifndef ZQ_FILE_DESCRIPTOR_H
#define ZQ_FILE_DESCRIPTOR_H

#include <unistd.h>

#include <cerrno>
#include <utility>

class FileDescriptor {
 public:
  explicit FileDescriptor(int fd) : fd_(fd) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() {
    const int reason = errno;
    Close();
    errno = reason;
  }

  bool IsOpen() const { return fd_ >= 0; }
  int Get() const { return fd_; }
  // False when the system reports an error; closed all the same.
  bool Close() { return fd_ < 0 || close(std::exchange(fd_, -1)) == 0; }

 private:
  int fd_;
};

#endif
