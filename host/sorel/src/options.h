// The command line. Decides only.
#ifndef SOREL_OPTIONS_H
#define SOREL_OPTIONS_H

#include <string>
#include <vector>

namespace sorel {

struct Options {
  bool help = false;
  bool version = false;
  bool trace = false;
  std::string device;  // "" for none
  std::vector<std::string> modules;
  std::string script;  // "" for none, "-" for standard input
};

extern const char kUsage[];

// False, and what is wrong in `error`. `arguments` without the program's name.
bool ParseOptions(const std::vector<std::string>& arguments, Options* options, std::string* error);
// The arguments that mean the same in another working directory; `folder` is this one. The device is left
// out.
std::vector<std::string> ArgumentsFor(const Options& options, const std::string& folder);

}  // namespace sorel

#endif
