// Runs the built host on scripts of a test's own.
#ifndef SOREL_TEST_SOREL_RUN_H
#define SOREL_TEST_SOREL_RUN_H

#include <string>
#include <vector>

#include "run_program.h"
#include "temp_dir.h"

// The built programs and modules.
std::string SorelProgram();
// A class module of the tests by name ("Probe").
std::string TestModule(const std::string& name);

// A folder of scripts and what the host says when it runs one of them with the module Probe.
class SorelRun {
 public:
  // Runs the text as the script "test.js".
  ProgramResult Run(const std::string& script);
  // The script's output without its last line break; what it wrote to stderr, and its status, when it failed.
  std::string Output(const std::string& script);

  void AddFile(const std::string& name, const std::string& text) { WriteFile(folder_ / name, text); }
  std::string File(const std::string& name) const { return folder_ / name; }
  // The words of the command that runs a file of the folder.
  std::vector<std::string> Command(const std::string& name) const;
  ProgramSetting setting;  // of each run

 private:
  TempDir folder_;
};

#endif
