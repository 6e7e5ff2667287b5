// Software update: the check, and what it found.
#ifndef ZQUTIL_ZQSOFTWAREUPDATE_H
#define ZQUTIL_ZQSOFTWAREUPDATE_H

#include <atomic>

// Holds periodic update checks back: an update is pending, or the device-management library is in charge.
extern std::atomic<bool> updateAvailable;

#endif
