// libzqapplog.so: keeps what users do in applications. Loaded by name; any thread.
//
// One line a record in "zqapplog.log" in $ZQ_CONFIG_DIR (or the working directory): UTC time, application,
// action, detail, with tabs between; in them a tab, line break, other control character or backslash is
// written \t, \n, \r, \xNN, \\, and a detail that is missing is "-" (one that is "-" is \x2d). A file that
// reaches 1 MiB becomes "zqapplog.log.1", in place of the one before.
#ifndef ZQ_APPLOG_H
#define ZQ_APPLOG_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define ZQ_APPLOG_API __attribute__((visibility("default")))

// Begins to keep records. `classObject` is the caller's, and not used. Returns 0, or -1 when there is no memory.
// Counted: each call is paired with one ZQLogUnregister.
ZQ_APPLOG_API int32_t ZQLogRegister(void* classObject);
// Takes a record and returns at once; the disk is written by a thread of the library's own, which the first record
// starts. `detail` may be null. Texts are cut to 1024 bytes. 0; -1 when nobody is registered, a text is null, 1000
// records wait already, or the system gives no thread: then the record is dropped, and the next one written is led by a
// line that says how many were.
ZQ_APPLOG_API int32_t ZQLogApplicationActivity(const char* application, const char* action,
                                               const char* detail);
// The last one waits until what was taken is written, at most 5 seconds, and ends the thread.
ZQ_APPLOG_API void ZQLogUnregister(void);

#ifdef __cplusplus
}
#endif

#endif
