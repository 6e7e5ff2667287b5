#include "device_fixture.h"

void DeviceTest::SetUp() {
  const ProgramResult made = Zqsim({"create", Root()});
  ASSERT_EQ(made.status, 0) << made.errors;
}

ProgramResult DeviceTest::Zqsim(std::vector<std::string> words, ProgramSetting setting) {
  words.insert(words.begin(), ZQSIM_PROGRAM);
  return RunProgram(words, setting);
}

ProgramResult DeviceTest::Run(const std::vector<std::string>& words, const ProgramSetting& setting) const {
  std::vector<std::string> all = {"run", Root(), "--"};
  all.insert(all.end(), words.begin(), words.end());
  return Zqsim(all, setting);
}

std::string DeviceTest::Shell(const std::string& script, const ProgramSetting& setting) const {
  const ProgramResult result = Run({"sh", "-c", "exec 2>&1; export LC_ALL=C\n" + script}, setting);
  return result.output + (result.status == 0 ? "" : "status " + std::to_string(result.status) + "\n");
}
