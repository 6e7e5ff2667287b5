// The key store: text values under text keys, kept in two redundant copies that boot loaders and shell tools
// share.
//
// The copies are named by a fw_env.config file: the one that $ZQ_NVRAM_CONFIG names, else /etc/fw_env.config.
// A handle holds the store's lock: open, act, close, at once. Any thread, any number of processes;
// fw_printenv and fw_setenv are kept away too, unless /var/lock/fw_printenv.lock cannot be written (traced
// once; users of this library take turns all the same). Every failure says why in the trace. With a config
// file that names one copy only, a write that is killed or cut off from power can lose the store.
#ifndef ZQ_NVRAM_H
#define ZQ_NVRAM_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

#define ZQ_NVRAM_API __attribute__((visibility("default")))

// Opens the store. Both arguments are 0. Returns a handle (0 or greater), or -1.
// Waits while another thread or process has it open; a thread that has it open itself gets -1.
// A damaged, short or missing copy is mended from the good one; on a device the next write does that. When
// the copies are regular files and neither exists, an empty store is made; copies on a device are never made
// here, nor is a store whose two copies are both damaged.
ZQ_NVRAM_API int nvram_open(int mode, int flags);
// Copies the value and a NUL; a longer value is cut to size - 1 bytes. 0; -1, the buffer untouched, when the
// key is missing, the handle is bad (closed ones are) or the buffer has no room for the NUL. `reserved` is
// null.
ZQ_NVRAM_API int nvram_read_key(int handle, void* reserved, const char* key, char* buffer, size_t size);
// Stores the value, any bytes but NUL, none too ("" is a value); on the disk when the call returns. 0; -1 and
// the old value kept when the disk refuses, the store is full, or the key or value cannot be stored (an empty
// key, a "=" or line break in the key, ".flags", a key that ".flags" protects, a null pointer).
ZQ_NVRAM_API int nvram_write_key(int handle, void* reserved, const char* key, const char* value);
// Removes the key; 0 also when it was not there.
ZQ_NVRAM_API int nvram_erase_key(int handle, void* reserved, const char* key);
// 0; -1 for a bad handle.
ZQ_NVRAM_API int nvram_close(int handle);

#ifdef __cplusplus
}
#endif

#endif
