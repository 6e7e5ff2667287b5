// INI settings files. Any thread, any number of processes.
//
// A file name without a "/" lies in $ZQ_CONFIG_DIR, or in the working directory when that is unset. Sections
// and keys are compared without regard to ASCII case and surrounding blanks; of equal ones the last counts. A
// value is text up to the end of the line without surrounding blanks; one that needs it (blanks at an end, a
// line break, a leading quote) stands in double quotes with \n, \r, \t, \" and \\ inside. Lines that are no
// setting are kept as they are.
//
// A write replaces the file whole or not at all, whatever happens in between, and keeps comments, order and
// the line ends in use; a link stays one, the file that it names is written. Writers of one folder take turns
// by a lock (flock) on the folder, which other programs may take too.
#ifndef ZQ_INI_H
#define ZQ_INI_H

#include <stddef.h>
#include <stdint.h>

#include "zq_api.h"

#ifdef __cplusplus
extern "C" {
#endif

// The decimal number at the start of the value, limited to the range of int32_t; `fallback` when the key is
// missing or holds no number.
ZQ_API int32_t zq_GetINIFileInt(const char* section, const char* key, int32_t fallback, const char* file);
// Copies at most `size` bytes of the value, whole UTF-8 characters when it must be cut, and returns their
// number. A NUL follows only where there is room: a buffer of size + 1 zero bytes always holds text. A
// missing key gives `fallback` (null: the empty text).
ZQ_API size_t zq_GetINIFileString(const char* section, const char* key, const char* fallback, char* buffer,
                                  size_t size, const char* file);
// True for "yes", "true", "on" and "1" in any case, false for any other text; a missing key gives what
// `fallback` (text, null: no) says.
ZQ_API bool zq_GetINIFileAffirmative(const char* section, const char* key, const char* fallback,
                                     const char* file);
// Writes one value. `durable`: on the disk when the call returns, also when it was there already; otherwise
// the system writes it in its own time, and a power cut before that may lose it. False, the old file
// untouched and the reason traced, when the section or key cannot stand in a file (empty, a line break or
// "=", a leading comment sign; in a section "]", before a key "["), the file may not be written, or the disk
// refuses.
ZQ_API bool zq_WriteINIFileString(const char* section, const char* key, const char* value, const char* file,
                                  bool durable);
ZQ_API bool zq_WriteINIFileInt(const char* section, const char* key, int32_t value, const char* file,
                               bool durable);
// The path under which the functions above find the file. False when it does not fit.
ZQ_API bool zq_INIFilePath(const char* file, char* path, size_t size);

#ifdef __cplusplus
}
#endif

#endif
