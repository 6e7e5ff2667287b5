// Version and "about" information.
#ifndef ZQUTIL_ABOUT_H
#define ZQUTIL_ABOUT_H

#include <cstdint>

#include "module_api.h"

// Thread body: gathers the summary and calls "onResult" of the singleton's about listener, as it is by then; with null
// when the host makes no object or memory runs out. Without a word when the singleton is gone before it was gathered, or
// the module before it is told. Returns 0.
ZQUTIL_API int32_t threadAboutDialog(void* singleton);

#endif
