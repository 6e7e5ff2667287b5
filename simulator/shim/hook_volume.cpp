// Volumes, watches, and the working folder.
#include <sys/inotify.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "call.h"

ZQSIM_NEXT(pathconf)
ZQSIM_NEXT(inotify_add_watch)
ZQSIM_NEXT(chdir)

ZQSIM_LOOK(statvfs)
ZQSIM_LOOK(statvfs64)
ZQSIM_LOOK(statfs)
ZQSIM_LOOK(statfs64)

ZQSIM_HOOK long pathconf(const char* path, int name) noexcept {
  return Call<Use::kLook>(NEXT(pathconf), path, name);
}

ZQSIM_HOOK int inotify_add_watch(int watcher, const char* path, uint32_t mask) noexcept {
  return CallAt<Use::kLook>(NEXT(inotify_add_watch), watcher, path, mask);
}

ZQSIM_HOOK int chdir(const char* path) noexcept {
  return Call<Use::kLook>(NEXT(chdir), path);
}
