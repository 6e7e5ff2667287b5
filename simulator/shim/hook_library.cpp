// dlopen. A name without "/" is searched for beside the library that asks, and the C library knows that one
// by the return address: so the call is passed on by a jump, which this file's compilation settings make sure
// of, and a mapped path, which nobody searches for, by a call.
#include <dlfcn.h>

#include "mapped_path.h"
#include "next.h"

ZQSIM_NEXT(dlopen)

namespace {

[[gnu::noinline]] bool IsOnDevice(const char* path) {
  const MappedPath at(path, Use::kLook);
  return !at.Ok() || at.OnDevice();
}

[[gnu::noinline]] void* OpenOnDevice(const char* path, int flags) {
  const MappedPath at(path, Use::kLook);
  return NEXT(dlopen)(at.Text(), flags);
}

}  // namespace

ZQSIM_HOOK void* dlopen(const char* path, int flags) noexcept {
  if (IsOnDevice(path)) return OpenOnDevice(path, flags);
  return NEXT(dlopen)(path, flags);
}
