// A restart of the device's network, which the system's network script does.
//
//   module                                   system's script
//   removes /tmp/done_S12, if there
//   makes /tmp/do_S12            ----------> consumes it, sets the interfaces up as the key store says
//   looks each second            <---------- makes /tmp/done_S12
//   removes /tmp/done_S12
//
// Two restarts at once are two threads: the first that sees the script done takes its file, the other waits for the
// next one. A thread waits as long as it takes, past the end of the module's objects too; all it touches then is
// the trace, the flag and the queue that stands at that time.
#ifndef ZQUTIL_ZQNETWORK_RESTART_H
#define ZQUTIL_ZQNETWORK_RESTART_H

#include <atomic>
#include <cstdint>

#include "module_api.h"

// From the request of a restart until a script was done.
extern std::atomic<bool> networkScriptRunning;

// From the request of a restart until the connectivity monitor's next step. A step that is under way at the request arms
// its own timer over the restart's, whose parameter would say the same.
extern std::atomic<bool> networkRestartBegins;

// Thread body; 0. The network object may be gone long before the thread: it is not touched.
ZQUTIL_API int32_t threadRestartNetwork(void* network);

#endif
