// Class modules: shared libraries with the entry points that engine.h names. Script thread.
#ifndef SOREL_MODULE_H
#define SOREL_MODULE_H

#include <memory>
#include <string>
#include <vector>

#include "engine.h"
#include "services.h"

namespace sorel {

class Module {
 public:
  // Loads the library, defines the class named as the file, without ".so", and starts the module. Null, and
  // one line that says why in `error`. The library stays in the process to its end: threads may still be in
  // its code.
  static std::unique_ptr<Module> Load(const std::string& path, std::string* error);
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;
  ~Module() = default;

  // MM_TermWrapper, MM_Unload.
  void End();

 private:
  Module() = default;
  bool FindEntryPoints(void* library, const std::string& path, std::string* error);

  zq_MM_Load load_ = nullptr;
  zq_MM_Unload unload_ = nullptr;
  zq_MM_InitWrapper init_ = nullptr;
  zq_MM_TermWrapper term_ = nullptr;
  ServiceTable table_{};
};

// The class's name: the file's without its folder and ".so".
std::string ClassNameOf(const std::string& path);
// ZQUtil.so in the folder of the platform's libraries.
std::string DefaultModulePath();

}  // namespace sorel

#endif
