// File monitors: other code in the host process is called back when a file is modified. The module itself monitors
// nothing. The first registration starts one thread, which serves all monitors until the process ends: nobody could say
// when the last of them is wanted no more.
//
// A monitor follows the file, not the name: the file that a rename or a new creation puts in its place needs a
// registration of its own, after the old one's end. There is one monitor a file: the latest registration's, also when
// the file has several names. Failures are only traced.
//
// Any thread may register and deregister at any time, a callback too. The registry's lock, the only one in the module,
// is held while an event is looked up and never while a callback runs, so that no callback can wait for itself, nor for
// a thread that waits for it. The price: a callback that is about to be called when its monitor is deregistered is
// still called once.
#ifndef ZQUTIL_ZQFILEMONITOR_H
#define ZQUTIL_ZQFILEMONITOR_H

#include <cstdint>

#include "module_api.h"

// One registration.
struct _fileMonitor {
  int32_t watch;   // inotify's
  char path[256];  // as registered; what is longer is cut, and cannot be deregistered
  void (*callback)(char const* path);
};

extern "C" {

// The callback gets the path as registered, good until it returns, once for each modification event; the kernel makes
// one of equal ones that were not fetched yet. It runs on the monitors' thread, which it should not keep: all files wait
// meanwhile. A folder's monitor hears of the files in it.
ZQUTIL_API void registerFileMonitor(char const* path, void (*callback)(char const*));
// Nothing happens when no monitor has this path and this callback.
ZQUTIL_API void deregisterFileMonitor(char const* path, void (*callback)(char const*));

}  // extern "C"

// Thread body. Never returns.
ZQUTIL_API int32_t threadFileMonitor(void* ignored);

#endif
