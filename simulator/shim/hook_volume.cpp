// Volumes, watches, and the working folder.
#include <sys/inotify.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "call.h"

ZQSIM_NEXT(statvfs)
ZQSIM_NEXT(statvfs64)
ZQSIM_NEXT(statfs)
ZQSIM_NEXT(statfs64)
ZQSIM_NEXT(pathconf)
ZQSIM_NEXT(inotify_add_watch)
ZQSIM_NEXT(chdir)

ZQSIM_HOOK int statvfs(const char* path, struct statvfs* out) noexcept {
  return Call<Use::kLook>(NEXT(statvfs), path, out);
}
ZQSIM_HOOK int statvfs64(const char* path, struct statvfs64* out) noexcept {
  return Call<Use::kLook>(NEXT(statvfs64), path, out);
}
ZQSIM_HOOK int statfs(const char* path, struct statfs* out) noexcept {
  return Call<Use::kLook>(NEXT(statfs), path, out);
}
ZQSIM_HOOK int statfs64(const char* path, struct statfs64* out) noexcept {
  return Call<Use::kLook>(NEXT(statfs64), path, out);
}
ZQSIM_HOOK long pathconf(const char* path, int name) noexcept {
  return Call<Use::kLook>(NEXT(pathconf), path, name);
}

ZQSIM_HOOK int inotify_add_watch(int watcher, const char* path, uint32_t mask) noexcept {
  return CallAt<Use::kLook>(NEXT(inotify_add_watch), watcher, path, mask);
}

ZQSIM_HOOK int chdir(const char* path) noexcept {
  return Call<Use::kLook>(NEXT(chdir), path);
}
