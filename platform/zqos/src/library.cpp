#include <dlfcn.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <exception>
#include <string>

#include "platform_trace.h"
#include "zq_file.h"

namespace {

// Where a library of that name would lie beside this one; "" when that is unknown.
std::string BesideThis(const std::string& name) {
  Dl_info own{};
  if (dladdr(reinterpret_cast<const void*>(&BesideThis), &own) == 0 || own.dli_fname == nullptr) return "";
  const std::string path = own.dli_fname;
  const size_t slash = path.rfind('/');
  return slash != std::string::npos ? path.substr(0, slash + 1) + name : "";
}

// A library beside this one is meant even when it is broken: the system's would only hide that.
std::string WhatToLoad(const std::string& name) {
  if (name.find('/') != std::string::npos) return name;
  const std::string beside = BesideThis(name);
  return !beside.empty() && access(beside.c_str(), F_OK) == 0 ? beside : name;
}

// A library that is not installed is no failure, callers have ways to do without; a broken one is, or one that lacks
// another: that one's name leads the loader's text then.
bool SaysMissing(const std::string& reason, const std::string& path) {
  return reason.rfind(path + ":", 0) == 0 && reason.find(std::strerror(ENOENT)) != std::string::npos;
}

}  // namespace

void* zq_LoadLibrary(const char* name) try {
  // An empty name would be the program itself.
  if (name == nullptr || *name == '\0') return nullptr;
  const std::string path = WhatToLoad(name);
  void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    const char* reason = dlerror();
    if (reason == nullptr) reason = "unknown";
    if (!SaysMissing(reason, path)) PlatformFailure("cannot load %s: %s", name, reason);
  }
  return library;
} catch (const std::exception&) {
  return nullptr;
}

void* zq_GetProcAddress(void* library, const char* name) {
  return library != nullptr && name != nullptr ? dlsym(library, name) : nullptr;
}

void zq_FreeLibrary(void* library) {
  if (library != nullptr) dlclose(library);
}
