// What the light-sensor thread asks the kernel, in its order: stands before the calls and passes them on.
#ifndef ZQUTIL_TESTS_BUS_CALLS_H
#define ZQUTIL_TESTS_BUS_CALLS_H

#include <string>

// Records while it lives; one at a time. Take gives the calls for the bus and the backlight since the last time, one a
// line:
//   open PATH FLAGS
//   select ADDRESS
//   write COMMAND SIZE: the five bytes of the block
//   read COMMAND SIZE: the block's first byte before the call
//   level BYTES: the text
//   close PATH
class BusCalls {
 public:
  BusCalls();
  BusCalls(const BusCalls&) = delete;
  BusCalls& operator=(const BusCalls&) = delete;
  ~BusCalls();
  std::string Take();
};

// How many block reads there were.
long BusReads();

// Called at the next selection of a chip, on the thread that makes it, before it is passed on.
void AtNextSelection(void (*action)());

// Whether the backlight refuses levels, with EIO.
void RefuseLevels(bool refuse);

#endif
