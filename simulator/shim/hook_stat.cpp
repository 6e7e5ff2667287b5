// What a path is, and what may be done with it.
#include <sys/stat.h>
#include <unistd.h>

#include "call.h"

ZQSIM_NEXT(fstatat)
ZQSIM_NEXT(fstatat64)
ZQSIM_NEXT(statx)
ZQSIM_NEXT(access)
ZQSIM_NEXT(faccessat)
ZQSIM_NEXT(euidaccess)

ZQSIM_LOOK(stat)
ZQSIM_LOOK(stat64)
ZQSIM_LOOK(lstat)
ZQSIM_LOOK(lstat64)

ZQSIM_HOOK int fstatat(int folder, const char* path, struct stat* out, int flags) noexcept {
  return CallAt<Use::kLook>(NEXT(fstatat), folder, path, out, flags);
}

ZQSIM_HOOK int fstatat64(int folder, const char* path, struct stat64* out, int flags) noexcept {
  return CallAt<Use::kLook>(NEXT(fstatat64), folder, path, out, flags);
}

// What programs built against older C libraries call. The version says which kernel's struct; one is left.
ZQSIM_HOOK int __xstat(int, const char* path, struct stat* out) noexcept {
  return Call<Use::kLook>(NEXT(stat), path, out);
}
ZQSIM_HOOK int __xstat64(int, const char* path, struct stat64* out) noexcept {
  return Call<Use::kLook>(NEXT(stat64), path, out);
}
ZQSIM_HOOK int __lxstat(int, const char* path, struct stat* out) noexcept {
  return Call<Use::kLook>(NEXT(lstat), path, out);
}
ZQSIM_HOOK int __lxstat64(int, const char* path, struct stat64* out) noexcept {
  return Call<Use::kLook>(NEXT(lstat64), path, out);
}
ZQSIM_HOOK int __fxstatat(int, int folder, const char* path, struct stat* out, int flags) noexcept {
  return CallAt<Use::kLook>(NEXT(fstatat), folder, path, out, flags);
}
ZQSIM_HOOK int __fxstatat64(int, int folder, const char* path, struct stat64* out, int flags) noexcept {
  return CallAt<Use::kLook>(NEXT(fstatat64), folder, path, out, flags);
}

ZQSIM_HOOK int statx(int folder, const char* path, int flags, unsigned int mask, struct statx* out) noexcept {
  return CallAt<Use::kLook>(NEXT(statx), folder, path, flags, mask, out);
}

ZQSIM_HOOK int access(const char* path, int mode) noexcept {
  return Call<Use::kLook>(NEXT(access), path, mode);
}

ZQSIM_HOOK int faccessat(int folder, const char* path, int mode, int flags) noexcept {
  return CallAt<Use::kLook>(NEXT(faccessat), folder, path, mode, flags);
}

ZQSIM_HOOK int euidaccess(const char* path, int mode) noexcept {
  return Call<Use::kLook>(NEXT(euidaccess), path, mode);
}
ZQSIM_HOOK int eaccess(const char* path, int mode) noexcept {
  return Call<Use::kLook>(NEXT(euidaccess), path, mode);
}
