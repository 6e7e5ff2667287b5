// A growable string of bytes. One thread at a time.
#ifndef ZQ_STRING_H
#define ZQ_STRING_H

#include <stddef.h>

#include "zq_api.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct _ZqString _ZqString;

// Empty, with room for `capacity` bytes; null when there is no memory.
ZQ_API _ZqString* zq_StringCreate(size_t capacity);
// Null is ignored.
ZQ_API void zq_StringDestroy(_ZqString* string);
// Makes it empty; the room stays.
ZQ_API void zq_StringReset(_ZqString* string);
// False, and the string as it was, when there is no memory or `text` is null.
ZQ_API bool zq_StringAppend(_ZqString* string, const char* text);
ZQ_API bool zq_StringAppendBytes(_ZqString* string, const void* bytes, size_t count);
ZQ_API size_t zq_StringLength(const _ZqString* string);
// NUL-terminated, the string's own, good until its next change.
ZQ_API const char* zq_StringText(const _ZqString* string);

#ifdef __cplusplus
}
#endif

#endif
