#include "prompt_commands.h"

#include <cctype>
#include <cstdlib>

#include "output.h"
#include "runtime.h"

namespace sorel {
namespace {

constexpr char kHelp[] =
    "Type a piece of script; its value is shown. One that is not finished goes on in the next line; Ctrl-C "
    "drops it.\n"
    "Tab completes names and, after a dot, methods; after \"(\" it shows the arguments.\n"
    "  new ZQUtil()   the device's services, by methods of this object\n"
    "  load(\"FILE\")   run a script      exit(STATUS)   end\n"
    "  .help          this              .help METHOD   what a method does\n"
    "  .exit          end, as Ctrl-D does";

void ShowHelpOf(std::string name) {
  name.erase(0, name.find_first_not_of(" \t"));
  // "util.getIP()" as well as "getIP"
  name = name.substr(0, name.find_first_of("( \t"));
  name = name.substr(name.rfind('.') + 1);
  const MethodHelp* const help = FindHelp(AllHelp(), name);
  WriteLine(help != nullptr ? ShowHelp(*help)
                            : "no help for \"" + name + "\": type .help and Tab for what there is",
            false);
}

}  // namespace

const std::vector<MethodHelp>& AllHelp() {
  static const std::vector<MethodHelp> all = ReadTypingsFolder(TypingsFolder());
  return all;
}

bool IsCommand(const std::string& line) {
  return line.size() > 1 && line[0] == '.' && isalpha(static_cast<unsigned char>(line[1])) != 0;
}

void RunCommand(std::string line) {
  line.erase(line.find_last_not_of(" \t") + 1);
  if (line == ".exit") {
    Runtime::Get().RequestExit(EXIT_SUCCESS);
  } else if (line == ".help") {
    WriteLine(kHelp, false);
  } else if (line.starts_with(kHelpOfMethod)) {
    ShowHelpOf(line.substr(sizeof kHelpOfMethod - 1));
  } else {
    WriteLine("no command " + line + ": .help says what there is", false);
  }
}

}  // namespace sorel
