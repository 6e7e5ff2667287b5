// fopen and its relatives.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "driver_open.h"
#include "next.h"

ZQSIM_NEXT(open64)
ZQSIM_NEXT(fopen)
ZQSIM_NEXT(fopen64)
ZQSIM_NEXT(freopen)
ZQSIM_NEXT(freopen64)

namespace {

constexpr mode_t kAllMayWrite = 0666;

// A driver's file, opened by the rules of AdaptFlags; -1 and errno when it cannot be.
int OpenDriver(const MappedPath& at, int flags) {
  return AdaptFlags(at, flags) ? NEXT(open64)(at.Text(), flags, kAllMayWrite) : -1;
}

template <typename Next>
FILE* OpenStream(Next next, const char* path, const char* mode) {
  const int flags = FlagsOfMode(mode);
  const MappedPath at(path, flags < 0 ? Use::kLook : UseOfFlags(flags));
  if (!at.Ok()) return nullptr;
  if (!at.IsDriver() || flags < 0 || UseOfFlags(flags) == Use::kLook) return next(at.Text(), mode);
  const int descriptor = OpenDriver(at, flags);
  if (descriptor < 0) return nullptr;
  FILE* stream = fdopen(descriptor, mode);
  if (stream == nullptr) {
    const int why = errno;
    close(descriptor);
    errno = why;
  }
  return stream;
}

// As freopen does, gives the stream up when the new file cannot be opened.
FILE* GiveUp(FILE* stream) {
  const int why = errno;
  fclose(stream);
  errno = why;
  return nullptr;
}

template <typename Next>
FILE* ReopenStream(Next next, const char* path, const char* mode, FILE* stream) {
  const int flags = FlagsOfMode(mode);
  const MappedPath at(path, flags < 0 ? Use::kLook : UseOfFlags(flags));
  if (!at.Ok()) return GiveUp(stream);
  if (at.IsDriver() && flags >= 0 && UseOfFlags(flags) == Use::kChange) {
    // Empties it, or finds out that it is not there to be opened.
    const int descriptor = OpenDriver(at, flags);
    if (descriptor < 0) return GiveUp(stream);
    close(descriptor);
  }
  return next(at.Text(), mode, stream);
}

}  // namespace

ZQSIM_HOOK FILE* fopen(const char* path, const char* mode) {
  return OpenStream(NEXT(fopen), path, mode);
}

ZQSIM_HOOK FILE* fopen64(const char* path, const char* mode) {
  return OpenStream(NEXT(fopen64), path, mode);
}

ZQSIM_HOOK FILE* freopen(const char* path, const char* mode, FILE* stream) {
  return ReopenStream(NEXT(freopen), path, mode, stream);
}

ZQSIM_HOOK FILE* freopen64(const char* path, const char* mode, FILE* stream) {
  return ReopenStream(NEXT(freopen64), path, mode, stream);
}
