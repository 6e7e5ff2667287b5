// Brings the copies into a state that the library can open.
#ifndef ZQ_NVRAM_MEND_STORE_H
#define ZQ_NVRAM_MEND_STORE_H

#include <string>

#include "store_config.h"

// The lock of the tools that share the store; the library takes it while the store is open.
inline constexpr char kToolsLock[] = "/var/lock/fw_printenv.lock";

// Restores a bad copy from the good one, and makes an empty store where DecideMending says so; what was done
// is traced. Returns why the store cannot be opened, or "". The caller has the turn among this library's
// users.
std::string MendStore(const StoreConfig& config);

// Makes the copies empty, whatever they hold; only on regular files. Returns why it cannot, or "".
std::string EraseStore(const StoreConfig& config);

// Whether a copy on a regular file is good.
bool HoldsStore(const StoreConfig& config);

#endif
