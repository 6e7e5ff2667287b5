// A file's length, mode, owner, times and extended attributes.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <utime.h>

#include "call.h"

ZQSIM_NEXT(truncate)
ZQSIM_NEXT(truncate64)
ZQSIM_NEXT(chmod)
ZQSIM_NEXT(fchmodat)
ZQSIM_NEXT(chown)
ZQSIM_NEXT(lchown)
ZQSIM_NEXT(fchownat)
ZQSIM_NEXT(utime)
ZQSIM_NEXT(utimes)
ZQSIM_NEXT(lutimes)
ZQSIM_NEXT(utimensat)
ZQSIM_NEXT(getxattr)
ZQSIM_NEXT(lgetxattr)
ZQSIM_NEXT(listxattr)
ZQSIM_NEXT(llistxattr)
ZQSIM_NEXT(setxattr)
ZQSIM_NEXT(lsetxattr)
ZQSIM_NEXT(removexattr)
ZQSIM_NEXT(lremovexattr)

ZQSIM_HOOK int truncate(const char* path, off_t length) noexcept {
  return Call<Use::kChange>(NEXT(truncate), path, length);
}
ZQSIM_HOOK int truncate64(const char* path, off64_t length) noexcept {
  return Call<Use::kChange>(NEXT(truncate64), path, length);
}

ZQSIM_HOOK int chmod(const char* path, mode_t mode) noexcept {
  return Call<Use::kChange>(NEXT(chmod), path, mode);
}
ZQSIM_HOOK int fchmodat(int folder, const char* path, mode_t mode, int flags) noexcept {
  return CallAt<Use::kChange>(NEXT(fchmodat), folder, path, mode, flags);
}

ZQSIM_HOOK int chown(const char* path, uid_t user, gid_t group) noexcept {
  return Call<Use::kChange>(NEXT(chown), path, user, group);
}
ZQSIM_HOOK int lchown(const char* path, uid_t user, gid_t group) noexcept {
  return Call<Use::kChange>(NEXT(lchown), path, user, group);
}
ZQSIM_HOOK int fchownat(int folder, const char* path, uid_t user, gid_t group, int flags) noexcept {
  return CallAt<Use::kChange>(NEXT(fchownat), folder, path, user, group, flags);
}

ZQSIM_HOOK int utime(const char* path, const struct utimbuf* times) noexcept {
  return Call<Use::kChange>(NEXT(utime), path, times);
}
ZQSIM_HOOK int utimes(const char* path, const struct timeval times[2]) noexcept {
  return Call<Use::kChange>(NEXT(utimes), path, times);
}
ZQSIM_HOOK int lutimes(const char* path, const struct timeval times[2]) noexcept {
  return Call<Use::kChange>(NEXT(lutimes), path, times);
}
ZQSIM_HOOK int utimensat(int folder, const char* path, const struct timespec times[2], int flags) noexcept {
  return CallAt<Use::kChange>(NEXT(utimensat), folder, path, times, flags);
}

ZQSIM_HOOK ssize_t getxattr(const char* path, const char* name, void* value, size_t size) noexcept {
  return Call<Use::kLook>(NEXT(getxattr), path, name, value, size);
}
ZQSIM_HOOK ssize_t lgetxattr(const char* path, const char* name, void* value, size_t size) noexcept {
  return Call<Use::kLook>(NEXT(lgetxattr), path, name, value, size);
}
ZQSIM_HOOK ssize_t listxattr(const char* path, char* list, size_t size) noexcept {
  return Call<Use::kLook>(NEXT(listxattr), path, list, size);
}
ZQSIM_HOOK ssize_t llistxattr(const char* path, char* list, size_t size) noexcept {
  return Call<Use::kLook>(NEXT(llistxattr), path, list, size);
}
ZQSIM_HOOK int setxattr(const char* path, const char* name, const void* value, size_t size,
                        int flags) noexcept {
  return Call<Use::kChange>(NEXT(setxattr), path, name, value, size, flags);
}
ZQSIM_HOOK int lsetxattr(const char* path, const char* name, const void* value, size_t size,
                         int flags) noexcept {
  return Call<Use::kChange>(NEXT(lsetxattr), path, name, value, size, flags);
}
ZQSIM_HOOK int removexattr(const char* path, const char* name) noexcept {
  return Call<Use::kChange>(NEXT(removexattr), path, name);
}
ZQSIM_HOOK int lremovexattr(const char* path, const char* name) noexcept {
  return Call<Use::kChange>(NEXT(lremovexattr), path, name);
}
