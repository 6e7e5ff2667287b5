// System calls that fail on purpose: a library that stands between a program and libc and lets chosen calls
// for files below one folder (the folder itself too) fail, wait, or end the process. Everything else passes
// through untouched.
//
// In a test program: link zq_fault and keep a Fault alive around the calls.
//
//   Fault fault(folder, "fsync:1:ENOSPC");
//   EXPECT_FALSE(Write(...));
//   EXPECT_EQ(fault.Calls("fsync"), 1);
//
// Around any other program, a tool or a benchmark: by the environment. In builds with sanitizers their
// runtime (the CMake variable ZQ_SANITIZER_RUNTIME) stands first in LD_PRELOAD.
//
//   LD_PRELOAD=.../libzq_fault.so ZQ_FAULT_DIR=/some/folder ZQ_FAULT=fsync:all:stall:1000 program
//
// A plan is rules between commas: CALL:WHICH:EFFECT. WHICH is a number, counted from 1 and per call since the
// plan began, or "all". EFFECT is one of
//   an errno name  the call does nothing and fails with it; a close closes all the same
//   short          a read or write of several bytes moves half of them
//   stall:MS       the call takes so many real milliseconds more
//   hold           the call waits until the plan ends
//   kill           the process is killed (SIGKILL) in place of the call
//   then-kill      the process is killed right after the call
// CALL is one of
//   open (also openat, creat), close, read (pread, readv), write (pwrite, writev), fsync, fdatasync,
//   ftruncate, rename (renameat, renameat2), link (linkat), unlink (unlinkat), flock, fchmod, fchown
// What libc calls itself, such as the writes of its FILE streams, does not come by here.
#ifndef ZQ_FAULT_H
#define ZQ_FAULT_H

#include <stdexcept>
#include <string>

extern "C" {
// False, and no plan in force, when the plan cannot be read. Null for the folder ends the plan.
__attribute__((visibility("default"))) bool zq_fault_begin(const char* folder, const char* plan);
// -1 for a call that is not in the list.
__attribute__((visibility("default"))) long zq_fault_calls(const char* call);
}

// At most one at a time; made and ended while no other thread touches files of the folder, but for calls that it holds.
class Fault {
 public:
  // An empty plan only counts. A plan that cannot be read throws std::invalid_argument.
  Fault(const std::string& folder, const std::string& plan) {
    if (!zq_fault_begin(folder.c_str(), plan.c_str())) throw std::invalid_argument("fault plan: " + plan);
  }
  Fault(const Fault&) = delete;
  Fault& operator=(const Fault&) = delete;
  ~Fault() { zq_fault_begin(nullptr, nullptr); }

  // How often the call was made for files of the folder since the plan began, failed ones too.
  long Calls(const std::string& call) const { return zq_fault_calls(call.c_str()); }
};

#endif
