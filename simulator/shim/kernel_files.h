// The kernel's files that tell the state of the network interfaces: links, routes.
//
// Each is a plain file under the device's root like any other, and follows what hw/ says: when the interface's file
// there has changed later than the kernel's file, that one is written anew before anybody looks at it. So of the two
// what was changed last counts, and a person may write a kernel's file by hand, too. A file that the device lacks is not
// made.
#ifndef ZQSIM_KERNEL_FILES_H
#define ZQSIM_KERNEL_FILES_H

#include <string_view>

// To be called before the path is looked at: `device` as the device sees it, `place` the same file on this machine.
// Keeps errno.
void FollowInterfaces(std::string_view device, const char* place);

#endif
