// Values as console and prompt show them.
#ifndef SOREL_SHOW_H
#define SOREL_SHOW_H

#include <string>

#include "jsc.h"

namespace sorel {

constexpr size_t kOneLine = 0;

// Text in quotes; objects and arrays as in JSON, with what JSON has no words for by name; functions by name. What is
// wider than `width` characters and has several elements is shown with a line for each; kOneLine: never.
std::string Show(JSContextRef context, JSValueRef value, size_t width = kOneLine);

}  // namespace sorel

#endif
