// The installation of a downloaded package, its acknowledgement at the update server, and the restart after it.
#ifndef ZQUTIL_ZQUPDATEINSTALL_H
#define ZQUTIL_ZQUPDATEINSTALL_H

#include <cstdint>

#include "module_api.h"

// "UPDATE&DEVICE" in decimal digits, while the server has not heard of an update's success.
constexpr char kPendingAcknowledgementKey[] = "upack.key";

// Install routines: what becomes of the package that the download record names. True when the system's updater is to
// be called; the record says whether the update counts as applied. They return when the work is done.
ZQUTIL_API bool ApplyUpdatePackage();
ZQUTIL_API bool CopyUpdateToUpdatesDir();

// Installs the package of the download that is complete, acknowledges it, or leaves the acknowledgement in the key store
// when the server cannot be reached, and reboots. Returns when neither the reboot nor the process's end came meanwhile.
// The thread of the download.
ZQUTIL_API void SendUpdateDownloadedSuccess(int32_t updateId, int32_t deviceId);
// The same for an update that was installed before: nothing is left to install.
void SendPendingAcknowledgement(int32_t updateId, int32_t deviceId);

// Waits until updates are not suspended, asks the system for a reboot and returns after five seconds. Ends the process
// with status 0 instead when the key store says that a restart of the host will do.
ZQUTIL_API void RebootDevice();
// False when the host is to be restarted instead of the device; the key that says so is consumed.
ZQUTIL_API bool rebootRequired();

// Ends the process when what scripts have set is stored, or does not get stored in time (AwaitDeferredWrites).
[[noreturn]] void ExitHost(int status);

#endif
