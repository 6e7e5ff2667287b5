// Shell commands with their output captured.
#ifndef ZQUTIL_ZQPOPEN_H
#define ZQUTIL_ZQPOPEN_H

#include "module_api.h"
#include "zq_string.h"

// Runs the command in a subshell and waits for its end. What it writes goes to `out` and `err` (either may be null),
// each emptied first, with every newline replaced; a capture always ends with a byte 0xFF. A command with double
// quotes in it breaks the quoting.
//
// Without `err`: whether the command could be run, whatever its exit status. With it: false, since that capture is
// never empty. Any thread.
ZQUTIL_API bool ZQPopen(const char* command, _ZqString* out, _ZqString* err, char newlineReplacement);

#endif
