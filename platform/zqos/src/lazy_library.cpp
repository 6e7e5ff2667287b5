#include <dlfcn.h>

#include <cstdlib>

#include "platform_trace.h"
#include "zq_file.h"
#include "zq_lazy_library.h"

bool zq_LazyLibrary::Load() {
  if (handle_ != nullptr) return true;
  // Two threads at once get the same handle.
  void* const loaded = zq_LoadLibrary(name_);
  if (loaded == nullptr) {
    PlatformFailure("%s is not installed\n", name_);
    return false;
  }
  handle_ = loaded;
  return true;
}

void* zq_LazyLibrary::Symbol(const char* symbol) {
  void* found = search_ == kProcessFirst ? dlsym(RTLD_DEFAULT, symbol) : nullptr;
  if (found == nullptr && Load()) found = zq_GetProcAddress(handle_, symbol);
  if (found == nullptr) {
    PlatformFailure("%s lacks %s\n", name_, symbol);
    std::abort();
  }
  return found;
}
