// The library's header, which takes size_t for known.
#ifndef ZQ_NVRAM_UBOOT_LIBRARY_H
#define ZQ_NVRAM_UBOOT_LIBRARY_H

// clang-format off
#include <stddef.h>
#include <libuboot.h>
// clang-format on

#endif
