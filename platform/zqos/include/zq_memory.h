// Allocation with a source tag: who asked is in the trace when memory runs out. The blocks are malloc's.
// Every function may be called from any thread.
#ifndef ZQ_MEMORY_H
#define ZQ_MEMORY_H

#include <stddef.h>

#include "zq_api.h"

#ifdef __cplusplus
extern "C" {
#endif

// A zero-filled block, or null when there is no memory (or count * size overflows). Freed with zq__free.
ZQ_API void* zq__calloc(size_t count, size_t size, const char* file, int line);
// A copy of the text, freed with zq__free; null for a null text or when there is no memory.
ZQ_API char* zq__newString(const char* text, const char* file, int line);
// Null is ignored.
ZQ_API void zq__free(void* block, const char* file, int line);

#ifdef __cplusplus
}
#endif

#endif
