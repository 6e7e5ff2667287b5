#include "cancellation.h"

#include <sys/eventfd.h>
#include <unistd.h>

Cancellation::Cancellation() : descriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

Cancellation::~Cancellation() {
  if (descriptor_ >= 0) close(descriptor_);
}

void Cancellation::Request() {
  requested_.store(true, std::memory_order_release);
  if (descriptor_ >= 0) eventfd_write(descriptor_, 1);
}
