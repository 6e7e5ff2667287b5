// Paths as text: nothing here asks the file system. Safe in signal handlers and before main: no allocation,
// no lock.
#ifndef ZQSIM_LEXICAL_PATH_H
#define ZQSIM_LEXICAL_PATH_H

#include <string_view>

// True when an absolute path holds an empty, "." or ".." part, so that its text alone does not say where it
// leads.
bool HasDots(std::string_view path);

// Writes the absolute path without empty, "." and ".." parts ("/.." is "/"); a trailing "/" stays, because it
// asks for a folder, and "/." and "/.." at the end ask for one too. Returns the length, or 0 when `size` is
// too small; no NUL is written. `path.size()` + 1 bytes always suffice.
size_t NormalizePath(std::string_view path, char* buffer, size_t size);

// True when `path` is `prefix` or lies below it. `prefix` has no trailing "/".
bool IsAtOrBelow(std::string_view path, std::string_view prefix);

#endif
