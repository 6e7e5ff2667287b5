// What the module asks the sound library, in its order: stands before the library's calls and passes them on.
#ifndef ZQUTIL_TESTS_SOUND_CALLS_H
#define ZQUTIL_TESTS_SOUND_CALLS_H

#include <string>

// The calls since the last time, one a line:
//   open NAME MODE
//   info INTERFACE NAME INDEX
//   write INTERFACE NAME INDEX LEFT,RIGHT     as machine words, which 64-bit numbers are too
std::string TakeSoundCalls();

#endif
