// The host from its start to its end. Script thread.
//
//   Start: engine, globals, modules in the order given       (a module that fails ends those before it)
//   Run:   script or prompt, then the loop
//   End:   other threads are refused; finalizers of what is left; the modules in reverse order; the process
#ifndef SOREL_HOST_H
#define SOREL_HOST_H

#include <memory>
#include <string>
#include <vector>

#include "loop.h"
#include "module.h"
#include "options.h"
#include "script.h"

namespace sorel {

class Host {
 public:
  // False, and one line that says why in `error`.
  bool Start(const Options& options, std::string* error);
  void Run();
  // With the status asked for, 0 when nobody asked. No destructor runs: threads of modules may be at work.
  [[noreturn]] void End();

 private:
  void EndModules();

  ScriptText script_;
  bool interactive_ = false;
  Loop loop_;
  std::vector<std::unique_ptr<Module>> modules_;
};

}  // namespace sorel

#endif
