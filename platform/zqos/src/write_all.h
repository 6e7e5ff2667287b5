// write() until everything is written.
#ifndef ZQOS_WRITE_ALL_H
#define ZQOS_WRITE_ALL_H

#include <cstddef>

// Returns the bytes that were written: fewer than `count` when the system refused the rest (errno says why).
size_t WriteAll(int descriptor, const void* bytes, size_t count);

#endif
