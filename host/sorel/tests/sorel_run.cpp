#include "sorel_run.h"

std::string SorelProgram() {
  return SOREL_PROGRAM;
}

std::string TestModule(const std::string& name) {
  return SOREL_TEST_MODULES "/" + name + ".so";
}

std::vector<std::string> SorelRun::Command(const std::string& name) const {
  return {SorelProgram(), "--module", TestModule("Probe"), folder_ / name};
}

ProgramResult SorelRun::Run(const std::string& script) {
  AddFile("test.js", script);
  return RunProgram(Command("test.js"), setting);
}

std::string SorelRun::Output(const std::string& script) {
  ProgramResult result = Run(script);
  if (result.status != 0 || !result.errors.empty()) {
    return "status " + std::to_string(result.status) + ": " + result.errors + result.output;
  }
  if (!result.output.empty()) result.output.pop_back();
  return result.output;
}
