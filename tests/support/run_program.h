// Runs a program to its end and keeps what it said.
#ifndef ZQ_TEST_RUN_PROGRAM_H
#define ZQ_TEST_RUN_PROGRAM_H

#include <sys/types.h>

#include <string>
#include <vector>

struct ProgramResult {
  int status;  // exit status, or minus the number of the signal that ended it
  std::string output;
  std::string errors;
};

struct ProgramSetting {
  std::string folder = {};                    // working folder; empty: this one
  std::vector<std::string> environment = {};  // "NAME=VALUE" sets, "NAME" unsets; the rest is inherited
  uid_t user = 0;                             // for a test that runs as root: the user to become; 0 stays
};

// The program is searched for in $PATH. Throws when the system gives no process.
ProgramResult RunProgram(const std::vector<std::string>& words, const ProgramSetting& setting = {});

#endif
