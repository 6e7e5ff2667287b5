// open and its relatives.
#include <fcntl.h>

#include <cstdarg>

#include "device_table.h"
#include "driver_open.h"
#include "next.h"

ZQSIM_NEXT(open)
ZQSIM_NEXT(open64)
ZQSIM_NEXT(openat)
ZQSIM_NEXT(openat64)

namespace {

// The mode, an argument only of calls that may make a file.
mode_t ModeOf(int flags, va_list rest) {
  const bool given = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): each caller has started the list.
  return given ? va_arg(rest, mode_t) : 0;
}

// Opens by `call`, which gets the path and the flags that the kernel shall see.
template <typename Call>
int OpenBy(const char* path, int flags, const Call& call) {
  const MappedPath at(path, UseOfFlags(flags));
  if (!at.Ok()) return -1;
  const DeviceKind kind = KindOf(at, flags);
  if (!AdaptFlags(at, flags)) return -1;
  if (kind == DeviceKind::kDriverValue) flags &= ~O_TRUNC;
  return NoteOpened(call(at.Text(), flags), kind);
}

template <typename Next>
int Open(Next next, const char* path, int flags, mode_t mode) {
  return OpenBy(path, flags, [&](const char* text, int adapted) { return next(text, adapted, mode); });
}

template <typename Next>
int OpenAt(Next next, int folder, const char* path, int flags, mode_t mode) {
  return OpenBy(path, flags,
                [&](const char* text, int adapted) { return next(folder, text, adapted, mode); });
}

}  // namespace

ZQSIM_HOOK int open(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const int descriptor = Open(NEXT(open), path, flags, ModeOf(flags, rest));
  va_end(rest);
  return descriptor;
}

ZQSIM_HOOK int open64(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const int descriptor = Open(NEXT(open64), path, flags, ModeOf(flags, rest));
  va_end(rest);
  return descriptor;
}

ZQSIM_HOOK int openat(int folder, const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const int descriptor = OpenAt(NEXT(openat), folder, path, flags, ModeOf(flags, rest));
  va_end(rest);
  return descriptor;
}

ZQSIM_HOOK int openat64(int folder, const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const int descriptor = OpenAt(NEXT(openat64), folder, path, flags, ModeOf(flags, rest));
  va_end(rest);
  return descriptor;
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
