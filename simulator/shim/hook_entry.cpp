// Names that come, go and move.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "call.h"

ZQSIM_NEXT(unlink)
ZQSIM_NEXT(unlinkat)
ZQSIM_NEXT(remove)
ZQSIM_NEXT(rmdir)
ZQSIM_NEXT(renameat)
ZQSIM_NEXT(renameat2)
ZQSIM_NEXT(linkat)
ZQSIM_NEXT(symlinkat)
ZQSIM_NEXT(mkdir)
ZQSIM_NEXT(mkdirat)
ZQSIM_NEXT(mkfifo)
ZQSIM_NEXT(mkfifoat)
ZQSIM_NEXT(mknod)
ZQSIM_NEXT(mknodat)

namespace {

// Driver files are a file system of their own, whose entries neither move nor take a second name.
bool CrossesDrivers(const MappedPath& from, const MappedPath& to) {
  if (!from.IsDriver() && !to.IsDriver()) return false;
  errno = EXDEV;
  return true;
}

template <typename Next, typename... Flags>
int Rename(Next next, int fromFolder, const char* from, int toFolder, const char* to, Flags... flags) {
  const MappedPath source(from, Use::kRemove);
  const MappedPath target(to, Use::kChange);
  if (!source.Ok() || !target.Ok() || CrossesDrivers(source, target)) return -1;
  return next(fromFolder, source.Text(), toFolder, target.Text(), flags...);
}

int Link(int fromFolder, const char* from, int toFolder, const char* to, int flags) {
  const MappedPath source(from, Use::kLook);
  const MappedPath target(to, Use::kCreate);
  if (!source.Ok() || !target.Ok() || CrossesDrivers(source, target)) return -1;
  return NEXT(linkat)(fromFolder, source.Text(), toFolder, target.Text(), flags);
}

// The kernel follows links by itself, so the link must hold the path that the kernel shall see; readlink
// gives the device's path back.
int Symlink(const char* text, int folder, const char* path) {
  const MappedPath target(text, Use::kLook);
  const MappedPath at(path, Use::kCreate);
  return target.Ok() && at.Ok() ? NEXT(symlinkat)(target.Text(), folder, at.Text()) : -1;
}

}  // namespace

ZQSIM_HOOK int unlink(const char* path) noexcept {
  return Call<Use::kRemove>(NEXT(unlink), path);
}
ZQSIM_HOOK int unlinkat(int folder, const char* path, int flags) noexcept {
  return CallAt<Use::kRemove>(NEXT(unlinkat), folder, path, flags);
}
ZQSIM_HOOK int remove(const char* path) noexcept {
  return Call<Use::kRemove>(NEXT(remove), path);
}
ZQSIM_HOOK int rmdir(const char* path) noexcept {
  return Call<Use::kRemove>(NEXT(rmdir), path);
}

ZQSIM_HOOK int rename(const char* from, const char* to) noexcept {
  return Rename(NEXT(renameat), AT_FDCWD, from, AT_FDCWD, to);
}
ZQSIM_HOOK int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
  return Rename(NEXT(renameat), fromFolder, from, toFolder, to);
}
ZQSIM_HOOK int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
                         unsigned int flags) noexcept {
  return Rename(NEXT(renameat2), fromFolder, from, toFolder, to, flags);
}

ZQSIM_HOOK int link(const char* from, const char* to) noexcept {
  return Link(AT_FDCWD, from, AT_FDCWD, to, 0);
}
ZQSIM_HOOK int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
  return Link(fromFolder, from, toFolder, to, flags);
}
ZQSIM_HOOK int symlink(const char* text, const char* path) noexcept {
  return Symlink(text, AT_FDCWD, path);
}
ZQSIM_HOOK int symlinkat(const char* text, int folder, const char* path) noexcept {
  return Symlink(text, folder, path);
}

ZQSIM_HOOK int mkdir(const char* path, mode_t mode) noexcept {
  return Call<Use::kCreate>(NEXT(mkdir), path, mode);
}
ZQSIM_HOOK int mkdirat(int folder, const char* path, mode_t mode) noexcept {
  return CallAt<Use::kCreate>(NEXT(mkdirat), folder, path, mode);
}
ZQSIM_HOOK int mkfifo(const char* path, mode_t mode) noexcept {
  return Call<Use::kCreate>(NEXT(mkfifo), path, mode);
}
ZQSIM_HOOK int mkfifoat(int folder, const char* path, mode_t mode) noexcept {
  return CallAt<Use::kCreate>(NEXT(mkfifoat), folder, path, mode);
}
ZQSIM_HOOK int mknod(const char* path, mode_t mode, dev_t device) noexcept {
  return Call<Use::kCreate>(NEXT(mknod), path, mode, device);
}
ZQSIM_HOOK int mknodat(int folder, const char* path, mode_t mode, dev_t device) noexcept {
  return CallAt<Use::kCreate>(NEXT(mknodat), folder, path, mode, device);
}
