// Script files and texts: read, evaluate. Script thread, except where `load` is called by a listener.
#ifndef SOREL_SCRIPT_H
#define SOREL_SCRIPT_H

#include <string>

#include "jsc.h"

namespace sorel {

struct ScriptText {
  std::string source;
  std::string name;  // for messages and stacks; the path of a file
};

// False, and why in `error`, when the file cannot be read.
bool ReadScript(const std::string& path, ScriptText* script, std::string* error);
bool ReadScriptFromStdin(ScriptText* script, std::string* error);
// The value of the last expression; null when the script threw, and what in `thrown`, and when the host was asked to
// end before the script's turn.
JSValueRef Evaluate(JSContextRef context, const ScriptText& script, JSValueRef* thrown);
// The path that `load(path)` means when `caller` calls it, a script's name ("" for none): relative to its
// folder.
std::string ResolveScript(const std::string& path, const std::string& caller);

}  // namespace sorel

#endif
