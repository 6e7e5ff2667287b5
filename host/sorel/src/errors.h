// What scripts throw, as text for a person.
#ifndef SOREL_ERRORS_H
#define SOREL_ERRORS_H

#include <string>

#include "jsc.h"

namespace sorel {

// A script Error with that message.
JSValueRef MakeError(JSContextRef context, const std::string& message);
// Ends the script that runs: for native functions to return once the host is asked to end.
JSValueRef Unwind(JSContextRef context, JSValueRef* exception);

// "FILE:LINE:COLUMN: NAME: MESSAGE", as much of it as is known, without line breaks.
std::string DescribeError(JSContextRef context, JSValueRef thrown);
// The same, then the stack, a line each, indented. Ends in a line break.
std::string DescribeErrorWithStack(JSContextRef context, JSValueRef thrown);
// Prints that on stderr, unless the host is asked to end: then a script was ended, nothing failed.
void ReportError(JSContextRef context, JSValueRef thrown);

}  // namespace sorel

#endif
