#include "empty_call.h"

// A file of its own: the compiler must not know that nothing happens.
void DoNothing(int, int, int, bool, const char*, ...) {}
