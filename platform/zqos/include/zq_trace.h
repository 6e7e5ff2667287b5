// Trace: printf-style lines under a named instance, sent where $ZQ_TRACE says.
//
// $ZQ_TRACE is "stderr", "syslog" (the default), "off", or the path of a file that is appended to.
// $ZQ_TRACE_LEVEL, a number, cuts the lines whose level is below it. Both are read at the first trace.
// A line is: time stamp, level, instance name, text. It is written when the call returns, so a crash loses
// none. Every function may be called from any thread.
#ifndef ZQ_TRACE_H
#define ZQ_TRACE_H

#include "zq_api.h"

#ifdef __cplusplus
extern "C" {
#endif

// Levels in use; greater is graver.
enum { ZQ_TRACE_NORMAL = 10000, ZQ_TRACE_FAILURE = 30000 };

// A new instance (greater than 0), or 0 when all are in use. The name is copied; file and line say who asks.
ZQ_API int zq_TraceCreate(const char* name, const char* file, int line);
// Gives the instance back; 0 and instances already released are ignored.
ZQ_API void zq_TraceRelease(int instance);
// Writes one line. `instance` 0 (none yet) and released instances are accepted and show as "-". `channel` is
// kept for the platform's use and is 1 from modules. One "\n" at the end of the text is dropped: the line has
// its own. Costs a few nanoseconds, and formats nothing, when the line goes nowhere.
ZQ_API void zq_Trace(int instance, int level, int channel, bool flush, const char* format, ...)
    ZQ_PRINTF(5, 6);
// Sends what follows elsewhere ("stderr", "syslog", "off" or a path) and sets the cut. Null keeps the
// destination; a file is opened anew, so that a rotated one can be let go. False, and nothing changed, when
// it cannot be opened.
ZQ_API bool zq_TraceRedirect(const char* destination, int level);

#ifdef __cplusplus
}
#endif

#endif
