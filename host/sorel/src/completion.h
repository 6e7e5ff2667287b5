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

// Decides only; names and dots alone are taken for an object, so that looking calls nothing.
Unfinished FindUnfinished(std::string_view line);
// The names of the object's properties, its prototypes' too, that begin with the prefix; sorted, each once.
std::vector<std::string> PropertyNames(JSContextRef context, const Unfinished& unfinished);

}  // namespace sorel

#endif
