// libcfgmgr.so: what the device's configuration management says. Loaded by name; any thread.
#ifndef ZQ_CFGMGR_H
#define ZQ_CFGMGR_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define ZQ_CFGMGR_API __attribute__((visibility("default")))

// 1 while "suspended" in section "updates" of "cfgmgr.ini" (in $ZQ_CONFIG_DIR, or the working directory) says
// yes, true, on or 1; else 0, also without the file. Read at every call.
ZQ_CFGMGR_API int32_t areUpdatesSuspended(void);

#ifdef __cplusplus
}
#endif

#endif
