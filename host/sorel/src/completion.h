// What the prompt offers to complete a line. Script thread.
#ifndef SOREL_COMPLETION_H
#define SOREL_COMPLETION_H

#include <string>
#include <string_view>
#include <vector>

#include "jsc.h"

namespace sorel {

// The end of a line that can be completed: "util.net.ge" is a property of "util.net" that begins with "ge".
struct Unfinished {
  std::string object;  // "" for the global object
  std::string prefix;
};

// The function whose arguments the line ends in, "setTZ" of "util.setTZ(", when the next one is not begun; "" when there
// is none.
std::string CalledFunction(std::string_view line);
// The names that a script declares by const, let and class, which are no properties of the global object.
std::vector<std::string> DeclaredNames(std::string_view script);

// Decides only; names and dots alone are taken for an object, so that looking calls nothing.
Unfinished FindUnfinished(std::string_view line);
// The names of the object's properties, its prototypes' too, that begin with the prefix; sorted, each once. What every
// object has comes only for a prefix.
std::vector<std::string> PropertyNames(JSContextRef context, const Unfinished& unfinished);
// Whether a script that says the name alone gets a value.
bool Exists(JSContextRef context, const std::string& name);

}  // namespace sorel

#endif
