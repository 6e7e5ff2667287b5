// The calls themselves: each asks the plan, then is passed to the next library that has it.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "fault.h"
#include "fault_plan.h"

#define ZQ_FAULT_API __attribute__((visibility("default")))

namespace {

// The latest one. Other threads may still ask one that has ended, so all are kept.
std::atomic<FaultPlan*> latest = nullptr;

FaultPlan* InForce() {
  FaultPlan* const plan = latest;
  return plan != nullptr && plan->InForce() ? plan : nullptr;
}

void EndPlan() {
  if (FaultPlan* const plan = latest) plan->End();
}

bool BeginPlan(const char* folder, const char* text) {
  EndPlan();
  auto* const plan = new FaultPlan(latest);
  latest = plan;
  return plan->Begin(folder, text);
}

template <typename Function>
Function Real(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}
// The function of this name that this library hides.
#define REAL(name)                                               \
  ([] {                                                          \
    static const auto function = Real<decltype(&::name)>(#name); \
    return function;                                             \
  }())

void Rest(long milliseconds) {
  timespec rest{milliseconds / 1000, (milliseconds % 1000) * 1000000L};
  while (nanosleep(&rest, &rest) != 0 && errno == EINTR) {
  }
}

// Room for "/proc/self/fd/N/" and a path.
struct Path {
  char text[PATH_MAX + 32];
};

bool OfDescriptor(int fd, Path* path) {
  char link[32];
  snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
  // The kernel's answer: on a simulated device, readlink gives the device's path, while names come by as the machine's.
  const ssize_t length = syscall(SYS_readlinkat, AT_FDCWD, link, path->text, PATH_MAX);
  if (length < 0) return false;
  path->text[length] = '\0';
  return true;
}

// As named, without following links.
bool OfName(int folderFd, const char* name, Path* path) {
  if (name == nullptr) return false;
  const size_t room = sizeof path->text;
  if (name[0] == '/') return snprintf(path->text, room, "%s", name) < static_cast<int>(room);
  if (folderFd != AT_FDCWD) {
    if (!OfDescriptor(folderFd, path)) return false;
  } else if (getcwd(path->text, PATH_MAX) == nullptr) {
    return false;
  }
  const size_t length = strlen(path->text);
  return snprintf(path->text + length, room - length, "/%s", name) < static_cast<int>(room - length);
}

// One call on its way: what is to happen to it.
class Visit {
 public:
  Visit(FaultCall call, int fd) {
    Path path;
    const int before = errno;
    FaultPlan* const plan = InForce();
    if (plan != nullptr && OfDescriptor(fd, &path)) Ask(*plan, call, path);
    errno = before;
  }
  Visit(FaultCall call, int folderFd, const char* name) {
    Path path;
    const int before = errno;
    FaultPlan* const plan = InForce();
    if (plan != nullptr && OfName(folderFd, name, &path)) Ask(*plan, call, path);
    errno = before;
  }
  Visit(const Visit&) = delete;
  Visit& operator=(const Visit&) = delete;
  ~Visit() {
    if (rule_.effect == FaultEffect::kThenKill) kill(getpid(), SIGKILL);
  }

  // True, with errno set, when the call is to fail.
  bool Fails() const {
    if (rule_.effect != FaultEffect::kError) return false;
    errno = rule_.number;
    return true;
  }
  size_t Shortened(size_t count) const {
    return rule_.effect == FaultEffect::kShort && count > 1 ? count / 2 : count;
  }

 private:
  void Ask(FaultPlan& plan, FaultCall call, const Path& path) {
    if (!plan.Covers(path.text)) return;
    rule_ = plan.Next(call);
    if (rule_.effect == FaultEffect::kKill) kill(getpid(), SIGKILL);
    if (rule_.effect == FaultEffect::kStall) Rest(rule_.number);
    while (rule_.effect == FaultEffect::kHold && plan.InForce()) Rest(1);
  }

  FaultRule rule_{FaultCall::kOpen, 0, FaultEffect::kNone, 0};
};

__attribute__((constructor)) void BeginFromEnvironment() {
  const char* folder = getenv("ZQ_FAULT_DIR");
  const char* text = getenv("ZQ_FAULT");
  if (folder == nullptr || text == nullptr || BeginPlan(folder, text)) return;
  // A plan that is not understood must not look like a program that copes with it.
  fprintf(stderr, "ZQ_FAULT: cannot begin \"%s\" in %s\n", text, folder);
  abort();
}

}  // namespace

extern "C" {

ZQ_FAULT_API bool zq_fault_begin(const char* folder, const char* text) {
  if (folder != nullptr) return BeginPlan(folder, text != nullptr ? text : "");
  EndPlan();
  return true;
}

ZQ_FAULT_API long zq_fault_calls(const char* call) {
  const auto named = FaultPlan::CallNamed(call);
  const FaultPlan* const plan = latest;
  if (!named) return -1;
  return plan != nullptr ? plan->Calls(*named) : 0;
}

// The mode is there only when a file may be made.
#define TAKE_MODE(flags)                                            \
  mode_t mode = 0;                                                  \
  if (((flags)&O_CREAT) != 0 || ((flags)&O_TMPFILE) == O_TMPFILE) { \
    va_list arguments;                                              \
    va_start(arguments, flags);                                     \
    mode = va_arg(arguments, mode_t);                               \
    va_end(arguments);                                              \
  }

#define DEFINE_OPEN(name)                                      \
  ZQ_FAULT_API int name(const char* path, int flags, ...) {    \
    TAKE_MODE(flags)                                           \
    const Visit visit(FaultCall::kOpen, AT_FDCWD, path);       \
    return visit.Fails() ? -1 : REAL(name)(path, flags, mode); \
  }
DEFINE_OPEN(open)
DEFINE_OPEN(open64)

#define DEFINE_OPENAT(name)                                             \
  ZQ_FAULT_API int name(int folder, const char* path, int flags, ...) { \
    TAKE_MODE(flags)                                                    \
    const Visit visit(FaultCall::kOpen, folder, path);                  \
    return visit.Fails() ? -1 : REAL(name)(folder, path, flags, mode);  \
  }
DEFINE_OPENAT(openat)
DEFINE_OPENAT(openat64)

// The names that programs built with checks use where no file is made.
ZQ_FAULT_API int __open_2(const char* path, int flags) {
  return open(path, flags);
}
ZQ_FAULT_API int __open64_2(const char* path, int flags) {
  return open64(path, flags);
}
ZQ_FAULT_API int __openat_2(int folder, const char* path, int flags) {
  return openat(folder, path, flags);
}
ZQ_FAULT_API int __openat64_2(int folder, const char* path, int flags) {
  return openat64(folder, path, flags);
}

ZQ_FAULT_API int creat(const char* path, mode_t mode) {
  return open(path, O_WRONLY | O_CREAT | O_TRUNC, mode);
}
ZQ_FAULT_API int creat64(const char* path, mode_t mode) {
  return open64(path, O_WRONLY | O_CREAT | O_TRUNC, mode);
}

ZQ_FAULT_API int close(int fd) {
  const Visit visit(FaultCall::kClose, fd);
  const int result = REAL(close)(fd);
  return visit.Fails() ? -1 : result;
}

ZQ_FAULT_API ssize_t read(int fd, void* bytes, size_t count) {
  const Visit visit(FaultCall::kRead, fd);
  return visit.Fails() ? -1 : REAL(read)(fd, bytes, visit.Shortened(count));
}
ZQ_FAULT_API ssize_t pread(int fd, void* bytes, size_t count, off_t offset) {
  const Visit visit(FaultCall::kRead, fd);
  return visit.Fails() ? -1 : REAL(pread)(fd, bytes, visit.Shortened(count), offset);
}
ZQ_FAULT_API ssize_t pread64(int fd, void* bytes, size_t count, off64_t offset) {
  const Visit visit(FaultCall::kRead, fd);
  return visit.Fails() ? -1 : REAL(pread64)(fd, bytes, visit.Shortened(count), offset);
}
ZQ_FAULT_API ssize_t readv(int fd, const iovec* parts, int count) {
  const Visit visit(FaultCall::kRead, fd);
  return visit.Fails()
             ? -1
             : REAL(readv)(fd, parts, static_cast<int>(visit.Shortened(static_cast<size_t>(count))));
}

ZQ_FAULT_API ssize_t write(int fd, const void* bytes, size_t count) {
  const Visit visit(FaultCall::kWrite, fd);
  return visit.Fails() ? -1 : REAL(write)(fd, bytes, visit.Shortened(count));
}
ZQ_FAULT_API ssize_t pwrite(int fd, const void* bytes, size_t count, off_t offset) {
  const Visit visit(FaultCall::kWrite, fd);
  return visit.Fails() ? -1 : REAL(pwrite)(fd, bytes, visit.Shortened(count), offset);
}
ZQ_FAULT_API ssize_t pwrite64(int fd, const void* bytes, size_t count, off64_t offset) {
  const Visit visit(FaultCall::kWrite, fd);
  return visit.Fails() ? -1 : REAL(pwrite64)(fd, bytes, visit.Shortened(count), offset);
}
ZQ_FAULT_API ssize_t writev(int fd, const iovec* parts, int count) {
  const Visit visit(FaultCall::kWrite, fd);
  return visit.Fails()
             ? -1
             : REAL(writev)(fd, parts, static_cast<int>(visit.Shortened(static_cast<size_t>(count))));
}

#define DEFINE_OF_DESCRIPTOR(kind, name, parameters, arguments, ...) \
  ZQ_FAULT_API int name parameters __VA_ARGS__ {                     \
    const Visit visit(FaultCall::kind, fd);                          \
    return visit.Fails() ? -1 : REAL(name) arguments;                \
  }
DEFINE_OF_DESCRIPTOR(kFsync, fsync, (int fd), (fd))
DEFINE_OF_DESCRIPTOR(kFdatasync, fdatasync, (int fd), (fd))
DEFINE_OF_DESCRIPTOR(kFtruncate, ftruncate, (int fd, off_t length), (fd, length), noexcept)
DEFINE_OF_DESCRIPTOR(kFtruncate, ftruncate64, (int fd, off64_t length), (fd, length), noexcept)
DEFINE_OF_DESCRIPTOR(kFlock, flock, (int fd, int operation), (fd, operation), noexcept)
DEFINE_OF_DESCRIPTOR(kFchmod, fchmod, (int fd, mode_t mode), (fd, mode), noexcept)
DEFINE_OF_DESCRIPTOR(kFchown, fchown, (int fd, uid_t user, gid_t group), (fd, user, group), noexcept)

// Of two names the new one tells the folder.
ZQ_FAULT_API int rename(const char* from, const char* to) noexcept {
  const Visit visit(FaultCall::kRename, AT_FDCWD, to);
  return visit.Fails() ? -1 : REAL(rename)(from, to);
}
ZQ_FAULT_API int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
  const Visit visit(FaultCall::kRename, toFolder, to);
  return visit.Fails() ? -1 : REAL(renameat)(fromFolder, from, toFolder, to);
}
ZQ_FAULT_API int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
                           unsigned flags) noexcept {
  const Visit visit(FaultCall::kRename, toFolder, to);
  return visit.Fails() ? -1 : REAL(renameat2)(fromFolder, from, toFolder, to, flags);
}
ZQ_FAULT_API int link(const char* from, const char* to) noexcept {
  const Visit visit(FaultCall::kLink, AT_FDCWD, to);
  return visit.Fails() ? -1 : REAL(link)(from, to);
}
ZQ_FAULT_API int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
  const Visit visit(FaultCall::kLink, toFolder, to);
  return visit.Fails() ? -1 : REAL(linkat)(fromFolder, from, toFolder, to, flags);
}
ZQ_FAULT_API int unlink(const char* path) noexcept {
  const Visit visit(FaultCall::kUnlink, AT_FDCWD, path);
  return visit.Fails() ? -1 : REAL(unlink)(path);
}
ZQ_FAULT_API int unlinkat(int folder, const char* path, int flags) noexcept {
  const Visit visit(FaultCall::kUnlink, folder, path);
  return visit.Fails() ? -1 : REAL(unlinkat)(folder, path, flags);
}
}
