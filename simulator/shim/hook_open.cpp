// open and its relatives.
#include <fcntl.h>

#include <cstdarg>

#include "driver_open.h"
#include "next.h"

ZQSIM_NEXT(open)
ZQSIM_NEXT(open64)
ZQSIM_NEXT(openat)
ZQSIM_NEXT(openat64)

namespace {

bool TakesMode(int flags) {
  return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

template <typename Next>
int Open(Next next, const char* path, int flags, mode_t mode) {
  const MappedPath at(path, UseOfFlags(flags));
  if (!at.Ok() || !AdaptFlags(at, flags)) return -1;
  return next(at.Text(), flags, mode);
}

template <typename Next>
int OpenAt(Next next, int folder, const char* path, int flags, mode_t mode) {
  const MappedPath at(path, UseOfFlags(flags));
  if (!at.Ok() || !AdaptFlags(at, flags)) return -1;
  return next(folder, at.Text(), flags, mode);
}

}  // namespace

// The mode is an argument only of calls that may make a file.
#define ZQSIM_READ_MODE(mode, flags) \
  mode_t mode = 0;                   \
  if (TakesMode(flags)) {            \
    va_list rest;                    \
    va_start(rest, flags);           \
    mode = va_arg(rest, mode_t);     \
    va_end(rest);                    \
  }

ZQSIM_HOOK int open(const char* path, int flags, ...) {
  ZQSIM_READ_MODE(mode, flags)
  return Open(NEXT(open), path, flags, mode);
}

ZQSIM_HOOK int open64(const char* path, int flags, ...) {
  ZQSIM_READ_MODE(mode, flags)
  return Open(NEXT(open64), path, flags, mode);
}

ZQSIM_HOOK int openat(int folder, const char* path, int flags, ...) {
  ZQSIM_READ_MODE(mode, flags)
  return OpenAt(NEXT(openat), folder, path, flags, mode);
}

ZQSIM_HOOK int openat64(int folder, const char* path, int flags, ...) {
  ZQSIM_READ_MODE(mode, flags)
  return OpenAt(NEXT(openat64), folder, path, flags, mode);
}

ZQSIM_HOOK int creat(const char* path, mode_t mode) {
  return Open(NEXT(open), path, O_CREAT | O_WRONLY | O_TRUNC, mode);
}

ZQSIM_HOOK int creat64(const char* path, mode_t mode) {
  return Open(NEXT(open64), path, O_CREAT | O_WRONLY | O_TRUNC, mode);
}

// What the headers' checks turn calls without a mode into.
ZQSIM_HOOK int __open_2(const char* path, int flags) {
  return Open(NEXT(open), path, flags, 0);
}

ZQSIM_HOOK int __open64_2(const char* path, int flags) {
  return Open(NEXT(open64), path, flags, 0);
}

ZQSIM_HOOK int __openat_2(int folder, const char* path, int flags) {
  return OpenAt(NEXT(openat), folder, path, flags, 0);
}

ZQSIM_HOOK int __openat64_2(int folder, const char* path, int flags) {
  return OpenAt(NEXT(openat64), folder, path, flags, 0);
}
