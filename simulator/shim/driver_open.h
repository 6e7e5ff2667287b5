// Opening a driver's file. A driver takes each write as the whole value; a plain file would keep the old
// value's tail ("42" over "100" would read back "420"). So opening for writing, in any mode, empties the
// plain file first: what one opening writes is the value. And no opening makes a driver's file that is not
// there.
// A file opened for both by open itself keeps its value until a write (device_table.h), which also tells the
// files apart that answer more than reads and writes.
#ifndef ZQSIM_DRIVER_OPEN_H
#define ZQSIM_DRIVER_OPEN_H

#include "mapped_path.h"

// What opening with these flags (of open) does with the path.
Use UseOfFlags(int flags);
// Adapts the flags of opening `at`, a driver's file or not. False, and errno, when the opening must fail.
bool AdaptFlags(const MappedPath& at, int& flags);
// The flags of open that a mode of fopen stands for; -1 for a mode that fopen refuses.
int FlagsOfMode(const char* mode);

#endif
