// Values as console and prompt show them.
#ifndef SOREL_SHOW_H
#define SOREL_SHOW_H

#include <string>

#include "jsc.h"

namespace sorel {

// Text in quotes; objects and arrays as JSON where they can be, else as String gives them; functions by name.
std::string Show(JSContextRef context, JSValueRef value);

}  // namespace sorel

#endif
