// Folders listed and searched.
#include <dirent.h>
#include <ftw.h>
#include <glob.h>
#include <sys/stat.h>

#include <cstring>

#include "call.h"

ZQSIM_NEXT(opendir)
ZQSIM_NEXT(scandir)
ZQSIM_NEXT(scandir64)
ZQSIM_NEXT(glob)
ZQSIM_NEXT(glob64)
ZQSIM_NEXT(nftw)
ZQSIM_NEXT(nftw64)

namespace {

DIR* OpenFolder(const char* path) {
  const MappedPath at(path, Use::kLook);
  return at.Ok() ? NEXT(opendir)(at.Text()) : nullptr;
}

// glob looks at folders by functions that its caller may give; these see the device.
template <typename Result, typename Next, typename Entry, typename Look>
int Search(Next next, const char* pattern, int flags, int (*onError)(const char*, int), Result* result,
           Entry* (*readEntry)(DIR*), Look look, Look lookAtLink) {
  if ((flags & GLOB_ALTDIRFUNC) != 0) return next(pattern, flags, onError, result);
  result->gl_opendir = [](const char* path) -> void* { return OpenFolder(path); };
  result->gl_readdir = reinterpret_cast<decltype(result->gl_readdir)>(readEntry);
  result->gl_closedir = [](void* folder) { closedir(static_cast<DIR*>(folder)); };
  result->gl_stat = look;
  result->gl_lstat = lookAtLink;
  const int found = next(pattern, flags | GLOB_ALTDIRFUNC, onError, result);
  result->gl_flags &= ~GLOB_ALTDIRFUNC;
  return found;
}

// The visitor of the walk that this thread is in, and how much of each path it is not to see.
template <typename Visit>
thread_local Visit visitor = nullptr;
template <typename Visit>
thread_local int hiddenLength = 0;

template <typename Visit, typename Stat>
int VisitSeen(const char* path, const Stat* facts, int type, struct FTW* place) {
  struct FTW seen = *place;
  seen.base -= hiddenLength<Visit>;
  return visitor<Visit>(path + hiddenLength<Visit>, facts, type, &seen);
}

template <typename Stat, typename Next, typename Visit>
int Walk(Next next, const char* path, Visit visit, int descriptors, int flags) {
  const MappedPath at(path, Use::kLook);
  if (!at.Ok()) return -1;
  if (!at.OnDevice()) return next(path, visit, descriptors, flags);
  char shown[PATH_MAX];
  const size_t length = strlen(at.Text());
  memcpy(shown, at.Text(), length + 1);
  Visit const outerVisitor = visitor<Visit>;
  const int outerHidden = hiddenLength<Visit>;
  visitor<Visit> = visit;
  hiddenLength<Visit> = static_cast<int>(length - ShowFromDevice(shown, length));
  const int result = next(at.Text(), VisitSeen<Visit, Stat>, descriptors, flags);
  visitor<Visit> = outerVisitor;
  hiddenLength<Visit> = outerHidden;
  return result;
}

}  // namespace

ZQSIM_HOOK DIR* opendir(const char* path) {
  return OpenFolder(path);
}

ZQSIM_HOOK int scandir(const char* path, struct dirent*** list, int (*keep)(const struct dirent*),
                       int (*compare)(const struct dirent**, const struct dirent**)) {
  return Call<Use::kLook>(NEXT(scandir), path, list, keep, compare);
}

ZQSIM_HOOK int scandir64(const char* path, struct dirent64*** list, int (*keep)(const struct dirent64*),
                         int (*compare)(const struct dirent64**, const struct dirent64**)) {
  return Call<Use::kLook>(NEXT(scandir64), path, list, keep, compare);
}

ZQSIM_HOOK int glob(const char* pattern, int flags, int (*onError)(const char*, int),
                    glob_t* result) noexcept {
  return Search(NEXT(glob), pattern, flags, onError, result, readdir, stat, lstat);
}

ZQSIM_HOOK int glob64(const char* pattern, int flags, int (*onError)(const char*, int),
                      glob64_t* result) noexcept {
  return Search(NEXT(glob64), pattern, flags, onError, result, readdir64, stat64, lstat64);
}

ZQSIM_HOOK int nftw(const char* path, __nftw_func_t visit, int descriptors, int flags) {
  return Walk<struct stat>(NEXT(nftw), path, visit, descriptors, flags);
}

ZQSIM_HOOK int nftw64(const char* path, __nftw64_func_t visit, int descriptors, int flags) {
  return Walk<struct stat64>(NEXT(nftw64), path, visit, descriptors, flags);
}
