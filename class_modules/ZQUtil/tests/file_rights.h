// Files that even root may not read, while it lives: takes away from this thread the right to pass over a file's mode.
#ifndef ZQUTIL_TESTS_FILE_RIGHTS_H
#define ZQUTIL_TESTS_FILE_RIGHTS_H

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

class OrdinaryFileRights {
 public:
  OrdinaryFileRights() {
    syscall(SYS_capget, &header_, before_);
    __user_cap_data_struct ordinary[2] = {before_[0], before_[1]};
    ordinary[0].effective &= ~(1U << CAP_DAC_OVERRIDE | 1U << CAP_DAC_READ_SEARCH);
    syscall(SYS_capset, &header_, ordinary);
  }
  OrdinaryFileRights(const OrdinaryFileRights&) = delete;
  OrdinaryFileRights& operator=(const OrdinaryFileRights&) = delete;
  ~OrdinaryFileRights() { syscall(SYS_capset, &header_, before_); }

 private:
  __user_cap_header_struct header_{_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct before_[2] = {};
};

#endif
