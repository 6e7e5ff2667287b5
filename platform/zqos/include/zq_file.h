// Files: find, copy, remove, room on a volume; libraries loaded at run time. Any thread.
#ifndef ZQ_FILE_H
#define ZQ_FILE_H

#include <stddef.h>
#include <stdint.h>

#include "zq_api.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct zq_FindData {
  char name[256];    // the entry's name, without its folder
  bool isDirectory;  // also a link to a folder
} zq_FindData;
typedef struct zq_Find zq_Find;

// Begins to list the entries that match "FOLDER/PATTERN" (shell wildcards in the last part; "*" matches all,
// "." and
// ".." too). Null when the folder cannot be read or nothing matches; else `data` holds the first entry, and
// the search is ended with zq_FindClose. The order is the file system's.
ZQ_API zq_Find* zq_FindFirstFile(const char* pattern, zq_FindData* data);
ZQ_API bool zq_FindNextFile(zq_Find* find, zq_FindData* data);
ZQ_API void zq_FindClose(zq_Find* find);

// Copies contents and mode, whole or not at all (a temporary beside the target takes its place). False when
// the target exists and `overwrite` is false, is a folder, or the source cannot be read; the target is then
// as it was.
ZQ_API bool zq_CopyFile(const char* source, const char* target, bool overwrite);
// Removes a file, not a folder. `settled`: in turn with INI writers of the folder, so that none that is under
// way brings the file back. True when the file is gone, also when it was not there.
ZQ_API bool zq_RemoveFile(const char* path, bool settled);
// Room of the volume that holds `path`, in KiB, limited to 32 bits: free in all, and available to users.
ZQ_API bool zq_GetVolumeInfo(const char* path, uint32_t* freeKb, uint32_t* availableKb);

// Loads a library, beside libzqos first when the name has no "/". Null when there is none, and,
// with the reason in the trace, when it is broken.
ZQ_API void* zq_LoadLibrary(const char* name);
ZQ_API void* zq_GetProcAddress(void* library, const char* name);
ZQ_API void zq_FreeLibrary(void* library);

#ifdef __cplusplus
}
#endif

#endif
