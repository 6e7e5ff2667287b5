// A file descriptor with an owner, who closes it.
#ifndef ZQSIM_OWNED_DESCRIPTOR_H
#define ZQSIM_OWNED_DESCRIPTOR_H

#include <unistd.h>

#include <utility>

class OwnedDescriptor {
 public:
  explicit OwnedDescriptor(int descriptor = -1) : descriptor_(descriptor) {}
  OwnedDescriptor(OwnedDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  OwnedDescriptor& operator=(OwnedDescriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~OwnedDescriptor() { Close(); }

  int Get() const { return descriptor_; }
  bool IsOpen() const { return descriptor_ >= 0; }
  void Close() {
    if (descriptor_ >= 0) close(descriptor_);
    descriptor_ = -1;
  }

 private:
  int descriptor_;
};

#endif
