// Runs a program to its end and keeps what it said.
#ifndef ZQ_TEST_RUN_PROGRAM_H
#define ZQ_TEST_RUN_PROGRAM_H

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
  bool obeysModes = false;                    // files' modes hold for the program though it is root's
};

// The program is searched for in $PATH. Throws when the system gives no process.
ProgramResult RunProgram(const std::vector<std::string>& words, const ProgramSetting& setting = {});

#endif
