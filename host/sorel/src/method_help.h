// What the prompt knows of methods and functions, from the typings that editors read too.
#ifndef SOREL_METHOD_HELP_H
#define SOREL_METHOD_HELP_H

#include <string>
#include <string_view>
#include <vector>

namespace sorel {

struct MethodHelp {
  std::string name;
  std::string signature;  // "setTZ(path: ZQText): void"
  std::string text;       // the comment, its marks made words; lines end with '\n'
};

// The methods of classes and the functions that a typings text (.d.ts) declares, in its order. What it does not
// understand it leaves out.
std::vector<MethodHelp> ReadTypings(std::string_view typings);

// All typings files of the folder, in the order of their names; none when it cannot be read.
std::vector<MethodHelp> ReadTypingsFolder(const std::string& folder);
// Where the typings stand beside the running program.
std::string TypingsFolder();

// Null when there is none of that name; letters in another case are forgiven when nothing fits exactly.
const MethodHelp* FindHelp(const std::vector<MethodHelp>& all, std::string_view name);
// Signature and text, as the prompt shows them.
std::string ShowHelp(const MethodHelp& help);

}  // namespace sorel

#endif
