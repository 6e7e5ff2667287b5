// Threads that nobody joins, their names, sleep, and the end of the process. Any thread may call these.
#ifndef ZQ_THREAD_H
#define ZQ_THREAD_H

#include <stddef.h>
#include <stdint.h>

#include "zq_api.h"

#ifdef __cplusplus
extern "C" {
#endif

// A thread's body. What it returns is traced nowhere and goes to nobody.
typedef int32_t (*zq_ThreadFunction)(void* argument);

typedef struct zq_ThreadAttributes {
  size_t stackBytes;  // 0: the platform's default
} zq_ThreadAttributes;

// Starts a thread; null attributes are the defaults. Returns its handle, never 0, or 0 when the system can
// start no more (traced with the source position). All signals but those that report the thread's own faults
// are blocked in it, except the one that the script engine stops threads with.
ZQ_API uint32_t zq__beginthread(zq_ThreadFunction function, void* argument,
                                const zq_ThreadAttributes* attributes, const char* file, int line);
// Names a thread for debuggers and `ps` (15 characters kept); handle 0 is the calling thread. A thread that
// has ended is ignored.
ZQ_API void zq_ThreadSetName(uint32_t thread, const char* name);
// Waits until no thread that zq__beginthread started with this function is left, for at most that many real
// milliseconds. True when none is left. Called from such a thread itself it does not count the caller.
ZQ_API bool zq_ThreadAwaitEnd(zq_ThreadFunction function, uint32_t milliseconds);
// Sleeps by the platform's clock (zq_clock.h).
ZQ_API void zq__Sleep(uint32_t milliseconds, const char* file, int line);
// Ends the process at once, from any thread, with what was traced on its way: runs the at_quick_exit handlers
// and no destructor, so threads that are still at work find everything in place until the end.
ZQ_API void zq_ExitProcess(int status) __attribute__((noreturn));

#ifdef __cplusplus
}
#endif

#endif
