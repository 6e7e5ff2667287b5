#include "library_choice.h"

#include <dlfcn.h>

#include <string_view>

namespace {

AppLogLibrary g_library = AppLogLibrary::kPlatforms;

const char* Chosen(const char* path) {
  if (path == nullptr || !std::string_view(path).ends_with("libzqapplog.so")) return path;
  switch (g_library) {
    case AppLogLibrary::kStub:
      return APPLOG_STUB;
    case AppLogLibrary::kMissing:
      return "/nowhere/libzqapplog.so";
    default:
      return path;
  }
}

}  // namespace

void ChooseAppLogLibrary(AppLogLibrary library) {
  g_library = library;
}

// Stands before the C library's for the whole program.
extern "C" __attribute__((visibility("default"))) void* dlopen(const char* path, int flags) noexcept {
  static const auto next = reinterpret_cast<void* (*)(const char*, int)>(dlsym(RTLD_NEXT, "dlopen"));
  return next(Chosen(path), flags);
}
