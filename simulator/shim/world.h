// The device of this process, read from the environment once.
#ifndef ZQSIM_WORLD_H
#define ZQSIM_WORLD_H

#include "path_rules.h"

// Null when there is no device: $ZQ_DEVICE is unset, not absolute, or "/"; or the process is too young to
// have an environment. What the process does to its environment later changes its children's device, not its
// own.
const DeviceView* CurrentView();

#endif
