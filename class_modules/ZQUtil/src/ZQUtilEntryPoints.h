// What the host calls, in this order and on the script thread: MM_Load, MM_InitWrapper, (scripts),
// MM_TermWrapper, MM_Unload.
#ifndef ZQUTIL_ENTRY_POINTS_H
#define ZQUTIL_ENTRY_POINTS_H

#include "engine.h"
#include "module_api.h"

// The optional application-log library, loaded by MM_Init and freed by MM_Term; null when there is none.
extern void* zqUtil_applogLib;

extern "C" {

ZQUTIL_API void MM_Load();
ZQUTIL_API void MM_Unload();
// Copies the host's service table, an array of machine words that is `bytes` long, and defines the class.
ZQUTIL_API int32_t MM_InitWrapper(void* table, uint32_t bytes);
ZQUTIL_API int32_t MM_TermWrapper();
// Returns what the application-log library's registration returns; 0 without that library.
ZQUTIL_API int32_t MM_Init(void* classObject);
// Waits for listener calls and settings writes under way, then lets the application-log library go. The singleton is the
// finalizers' business. Returns 0.
ZQUTIL_API int32_t MM_Term(void* classObject);

}  // extern "C"

#endif
