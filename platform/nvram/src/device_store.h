// Stores on devices, where only the library knows how to write (flash is erased first, some are
// write-protected).
#ifndef ZQ_NVRAM_DEVICE_STORE_H
#define ZQ_NVRAM_DEVICE_STORE_H

#include <string>

#include "store_config.h"

struct uboot_ctx;

// Whether a copy is on a device.
bool IsOnDevice(const StoreConfig& config);

// Writes what the library holds; on the disk when it returns. Returns why it cannot, or "". The library must
// read the store anew before the next write: it no longer knows which copy is newer.
std::string StoreThroughLibrary(uboot_ctx* context, const StoreConfig& config);

// Makes every copy empty.
std::string EraseThroughLibrary(const std::string& configPath, const StoreConfig& config);

// Whether a good copy is there.
bool LibraryFindsStore(const std::string& configPath);

#endif
