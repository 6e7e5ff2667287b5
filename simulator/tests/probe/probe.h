// A program that makes each call that the preloaded library stands before, on a path of the device. The
// machine has no /brimvale, so a call that is not mapped fails; what a call makes is looked for under the
// device's root.
#ifndef ZQSIM_PROBE_H
#define ZQSIM_PROBE_H

#include <dlfcn.h>

#include <span>
#include <string>

#define PROBE_FOLDER "/brimvale/probe"
#define PROBE_GIVEN PROBE_FOLDER "/given"      // a file that holds "device"
#define PROBE_PROGRAM PROBE_FOLDER "/program"  // a script that ends with kProgramStatus
#define PROBE_LINK PROBE_FOLDER "/link"        // a symbolic link to PROBE_GIVEN
#define PROBE_TREE PROBE_FOLDER "/tree"        // a folder with one file, leaf
#define PROBE_LIBRARY PROBE_FOLDER "/libzqsim_probe_leaf.so"

constexpr int kProgramStatus = 7;

struct ProbeRow {
  const char* name;  // the call
  bool (*works)();
};

std::span<const ProbeRow> OpenRows();
std::span<const ProbeRow> LookRows();
std::span<const ProbeRow> EntryRows();
std::span<const ProbeRow> AttributeRows();
std::span<const ProbeRow> NameRows();
std::span<const ProbeRow> ProgramRows();
std::span<const ProbeRow> DisplayRows();
std::span<const ProbeRow> DeviceRows();
std::span<const ProbeRow> InterfaceRows();
std::span<const ProbeRow> NewsRows();

// A device path that nothing has; another at each call.
std::string Fresh();
// Where the device path is on the machine.
std::string Place(const std::string& path);
// True when the device path is there, seen from the machine.
bool OnDevice(const std::string& path);
// True when the descriptor reads "device"; closes it.
bool ReadsGiven(int descriptor);
// A call that the headers do not declare.
template <typename Function>
Function* Symbol(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_DEFAULT, name));
}

#endif
