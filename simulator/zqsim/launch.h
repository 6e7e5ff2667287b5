// Starts a command on a device.
#ifndef ZQSIM_LAUNCH_H
#define ZQSIM_LAUNCH_H

#include <filesystem>
#include <string>
#include <vector>

#include "places.h"

// Where the command's program is: a name is searched for in $PATH; a path counts from the working folder, but
// an absolute one that the device has is the device's. Empty when there is none.
std::filesystem::path FindProgram(const std::string& command, const std::filesystem::path& root);

// The prefixes that stay the machine's on the device, colon-separated: `before`, the tool's own, the folders
// of the caller and of the program, and folders below /tmp that arguments name files in. A path with a colon
// in it cannot be listed and is left out.
std::string HostPaths(const std::string& before, const Places& places, const std::filesystem::path& program,
                      const std::vector<std::string>& arguments, const std::filesystem::path& root);

// The value of LD_PRELOAD: the sanitizer's runtime, when programs are built with one, the shim, and what was
// there.
std::string Preloads(const std::string& before, const std::filesystem::path& shim);

// The tools that are installed beside this one are a device's on its PATH: before the machine's of the same names,
// unless the caller has them there already.
void PutToolsOnPath(const Places& places);

// Puts this process on the device: environment and working folder. `program` becomes what Become needs. 0, or the exit
// status of a failure: 127 when there is no such program, 1 when the device cannot be entered; one line on stderr says
// why.
int Enter(const std::vector<std::string>& command, const std::filesystem::path& root, const Places& places,
          std::filesystem::path* program);

// Replaces this process by the program. Returns only when it cannot, with the exit status 126 and one line on stderr.
int Become(const std::filesystem::path& program, const std::vector<std::string>& command);

// Starts this program anew without the shim when it was itself started on a device: the folders that it is
// told are the machine's. Returns when that is not so.
void LeaveDevice(char** arguments);

#endif
