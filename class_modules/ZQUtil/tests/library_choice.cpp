#include "library_choice.h"

#include <dlfcn.h>

#include <string_view>

#include "zq_file.h"

namespace {

AppLogLibrary g_library = AppLogLibrary::kPlatforms;

const char* Chosen(const char* name) {
  if (name == nullptr || std::string_view(name) != "libzqapplog.so") return name;
  switch (g_library) {
    case AppLogLibrary::kStub:
      return APPLOG_STUB;
    case AppLogLibrary::kWithoutSymbols:
      return OTHER_LIBRARY;
    case AppLogLibrary::kMissing:
      return "/nowhere/libzqapplog.so";
    default:
      return name;
  }
}

}  // namespace

void ChooseAppLogLibrary(AppLogLibrary library) {
  g_library = library;
}

// Stands before the platform's for the whole program.
void* zq_LoadLibrary(const char* name) {
  static const auto next = reinterpret_cast<decltype(&zq_LoadLibrary)>(dlsym(RTLD_NEXT, "zq_LoadLibrary"));
  return next(Chosen(name));
}
