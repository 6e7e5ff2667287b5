#include "module.h"

#include <dlfcn.h>

#include <filesystem>

#include "native_class.h"
#include "runtime.h"
#include "scope.h"
#include "zq_trace.h"

namespace sorel {
namespace {

// False, and why in `error`, when the library lacks the entry point.
template <typename Function>
bool Find(void* library, const char* name, const std::string& path, Function* function, std::string* error) {
  *function = reinterpret_cast<Function>(dlsym(library, name));
  if (*function == nullptr) *error = path + ": no class module: " + name + " is missing";
  return *function != nullptr;
}

}  // namespace

bool Module::FindEntryPoints(void* library, const std::string& path, std::string* error) {
  return Find(library, "MM_Load", path, &load_, error) && Find(library, "MM_Unload", path, &unload_, error) &&
         Find(library, "MM_InitWrapper", path, &init_, error) &&
         Find(library, "MM_TermWrapper", path, &term_, error);
}

std::unique_ptr<Module> Module::Load(const std::string& path, std::string* error) {
  void* library = dlopen(std::filesystem::absolute(path).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    *error = dlerror();
    return nullptr;
  }
  std::unique_ptr<Module> module(new Module);
  if (!module->FindEntryPoints(library, path, error)) return nullptr;
  JSObjectRef classObject = MakeClass(ClassNameOf(path));
  if (classObject == nullptr) {
    *error = path + ": the engine cannot make a class of that name";
    return nullptr;
  }
  Runtime& runtime = Runtime::Get();
  const auto handleOf = [&runtime](JSObjectRef object) {
    const EngineLock lock;
    return runtime.Handles().Of(object);
  };
  module->table_ = MakeServiceTable(handleOf(classObject));
  const Scope scope(runtime.Context(), {});
  module->load_();
  // Not an error in itself: modules answer 0 when something optional is absent.
  module->init_(module->table_.data(), sizeof module->table_);
  return module;
}

void Module::End() {
  const Scope scope(Runtime::Get().Context(), {});
  term_();
  unload_();
}

std::string ClassNameOf(const std::string& path) {
  return std::filesystem::path(path).stem().string();
}

std::string DefaultModulePath() {
  Dl_info info{};
  const char* ours = dladdr(reinterpret_cast<void*>(zq_TraceCreate), &info) != 0 ? info.dli_fname : "";
  return (std::filesystem::path(ours).parent_path() / "ZQUtil.so").string();
}

}  // namespace sorel
