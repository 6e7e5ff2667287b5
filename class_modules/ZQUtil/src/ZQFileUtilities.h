// Paths and copies, as the software update needs them. Any thread.
#ifndef ZQUTIL_ZQFILEUTILITIES_H
#define ZQUTIL_ZQFILEUTILITIES_H

#include <cstddef>

#include "module_api.h"
#include "zq_string.h"

// Appends the one-character text made of `character`: nothing for NUL.
ZQUTIL_API void ZQString_appendCharacter(_ZqString* string, char character);

// Length of the path without its trailing slashes; at least 1 unless the path is empty.
ZQUTIL_API size_t ZQTrimmedPathLength(const char* path);

// The path's last component, a new string that the caller destroys. One trailing slash stays ("/usr/lib//" gives
// "lib/"), a path of slashes alone gives "/".
ZQUTIL_API _ZqString* ZQBasename(const char* path);

// Copies the file, over an older one; into the destination when that is a folder. Whether it succeeded.
ZQUTIL_API bool ZQCopyFile(const char* source, const char* destination);

#endif
