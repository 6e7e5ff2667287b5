// Starts this program anew on a simulated device.
#ifndef SOREL_DEVICE_H
#define SOREL_DEVICE_H

#include <string>

#include "options.h"

namespace sorel {

// True in the process that runs on the device already.
bool OnDevice();
// Becomes the simulator's program beside this one, which starts this one again with the device around it and the
// device's system scripts beside it.
// Returns only when that is impossible, with one line that says why.
std::string EnterDevice(const Options& options);

}  // namespace sorel

#endif
