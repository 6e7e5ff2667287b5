// What is to be done about the copies before they are used.
#ifndef ZQ_NVRAM_MENDING_H
#define ZQ_NVRAM_MENDING_H

#include <span>

enum class CopyState {
  Good,
  Damaged,   // of full length, but its CRC does not hold
  Unusable,  // shorter, without an end, or it cannot be read: the library would not open the store at all
  Missing,   // a regular file that is not there
  Device,    // the library's own business; it heals by the next write
};

enum class Mending {
  Nothing,
  FirstFromSecond,
  SecondFromFirst,
  Make,  // an empty store
  Lost,  // no copy is left to mend from
};

// `states` has one entry or two.
Mending DecideMending(std::span<const CopyState> states);

#endif
