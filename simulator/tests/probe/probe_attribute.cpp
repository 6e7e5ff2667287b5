#include <fcntl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <utime.h>

#include <cerrno>

#include "probe.h"

namespace {

// A file that attributes are tried on.
constexpr const char* kFile = PROBE_FOLDER "/attributes";

bool HasLength(off_t length) {
  struct stat facts;
  return stat(kFile, &facts) == 0 && facts.st_size == length;
}

bool HasMode(mode_t mode) {
  struct stat facts;
  return stat(kFile, &facts) == 0 && (facts.st_mode & 07777) == mode;
}

bool HasTime(time_t seconds) {
  struct stat facts;
  return stat(kFile, &facts) == 0 && facts.st_mtime == seconds;
}

// Not each file system has extended attributes, but each says first that a file is missing.
bool Reached(ssize_t result) {
  return result >= 0 || errno == ENOTSUP || errno == ENODATA;
}

constexpr timeval kTimes[2] = {{3, 0}, {3, 0}};
constexpr timeval kLinkTimes[2] = {{4, 0}, {4, 0}};
constexpr timespec kFineTimes[2] = {{5, 0}, {5, 0}};

constexpr ProbeRow kRows[] = {
    {"truncate", [] { return truncate(kFile, 5) == 0 && HasLength(5); }},
    {"truncate64", [] { return truncate64(kFile, 4) == 0 && HasLength(4); }},
    {"chmod", [] { return chmod(kFile, 0600) == 0 && HasMode(0600); }},
    {"fchmodat", [] { return fchmodat(AT_FDCWD, kFile, 0640, 0) == 0 && HasMode(0640); }},
    {"chown", [] { return chown(kFile, geteuid(), getegid()) == 0; }},
    {"lchown", [] { return lchown(kFile, geteuid(), getegid()) == 0; }},
    {"fchownat", [] { return fchownat(AT_FDCWD, kFile, geteuid(), getegid(), 0) == 0; }},
    {"utime",
     [] {
       const utimbuf times{2, 2};
       return utime(kFile, &times) == 0 && HasTime(2);
     }},
    {"utimes", [] { return utimes(kFile, kTimes) == 0 && HasTime(3); }},
    {"lutimes", [] { return lutimes(kFile, kLinkTimes) == 0 && HasTime(4); }},
    {"utimensat", [] { return utimensat(AT_FDCWD, kFile, kFineTimes, 0) == 0 && HasTime(5); }},
    {"setxattr", [] { return Reached(setxattr(kFile, "user.probe", "1", 1, 0)); }},
    {"lsetxattr", [] { return Reached(lsetxattr(kFile, "user.other", "1", 1, 0)); }},
    {"getxattr", [] { return Reached(getxattr(kFile, "user.probe", nullptr, 0)); }},
    {"lgetxattr", [] { return Reached(lgetxattr(kFile, "user.probe", nullptr, 0)); }},
    {"listxattr", [] { return Reached(listxattr(kFile, nullptr, 0)); }},
    {"llistxattr", [] { return Reached(llistxattr(kFile, nullptr, 0)); }},
    {"removexattr", [] { return Reached(removexattr(kFile, "user.probe")); }},
    {"lremovexattr", [] { return Reached(lremovexattr(kFile, "user.other")); }},
};

}  // namespace

std::span<const ProbeRow> AttributeRows() {
  return kRows;
}
