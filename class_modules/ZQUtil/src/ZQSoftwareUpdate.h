// Software update: the check at the update server, and what it found.
//
//   timer 1 -> CheckForAvailableUpdates -> a thread of its own: threadCheckForAvailableUpdates
//     an acknowledgement that waits is sent, and that is all; else
//     the server is asked, its connection being the connectivity test's answer (messages 0x1000e, 0x1000f), and
//     HttpProcessResponse takes the list, the device's identity and, of a forced update, the download (ZQUpdateDownload.h)
//
// Threads of the update outlive the singleton when they must: they touch what is named here, never the singleton.
#ifndef ZQUTIL_ZQSOFTWAREUPDATE_H
#define ZQUTIL_ZQSOFTWAREUPDATE_H

#include <atomic>
#include <cstdint>

#include "module_api.h"

// Holds periodic update checks back: an update is pending, or the device-management library is in charge.
extern std::atomic<bool> updateAvailable;
// Hears of updates; the engine keeps it alive as the class object's property "UpdateListener".
extern std::atomic<void*> updateListener;
// Of the update that is being installed.
extern std::atomic<int32_t> currentUpdateId;
// The last identity that the server gave, which acknowledgements carry; 0 before.
extern std::atomic<int32_t> assignedDeviceId;
// Update entries received since the process began.
extern std::atomic<int32_t> updateCounter;

// Thread body: one check. Returns 0.
ZQUTIL_API int32_t threadCheckForAvailableUpdates(void* unused);
// Takes one answer of the server. Not the script thread: it calls the update listener.
ZQUTIL_API void HttpProcessResponse(char* xml);

// Calls the update listener, if there is one, on a thread of the module.
void CallUpdateListener(const char* method);
void CallUpdateListener(const char* method, int32_t number);

#endif
