// Runs a program on a device with the device's system beside it, as a board's init does.
#ifndef ZQSIM_SUPERVISE_H
#define ZQSIM_SUPERVISE_H

#include <filesystem>
#include <string>
#include <vector>

#include "places.h"

struct SupervisedRun {
  std::filesystem::path program;
  std::vector<std::string> command;
  std::filesystem::path root;
  Places places;
  bool restartOnSuccess;  // status 0 asks for a new start, as the device's host does it
};

// In a process that has entered the device. Signals that this process gets are passed on to the program. After a reboot
// the program runs again, with an empty /tmp, after the system has booted. Returns the program's exit status; when a
// signal ended the program, it ends this process too. 1 after ten new starts, with a line on stderr.
int Supervise(const SupervisedRun& run);

#endif
