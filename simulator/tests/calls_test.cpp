// Every call that the library stands before reaches the device.
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "device_fixture.h"

namespace {

namespace fs = std::filesystem;

class Calls : public DeviceTest {
 protected:
  void SetUp() override {
    DeviceTest::SetUp();
    const fs::path probe = Place("/brimvale/probe");
    fs::create_directories(probe / "tree");
    WriteFile(probe / "given", "device");
    WriteFile(probe / "attributes", "");
    WriteFile(probe / "tree" / "leaf", "");
    WriteFile(probe / "program", "#!/bin/sh\nexit 7\n");
    chmod((probe / "program").c_str(), 0755);
    fs::create_symlink(probe / "given", probe / "link");
    fs::copy(ZQSIM_PROBES "/libzqsim_probe_leaf.so", probe);
  }
};

std::vector<std::string> SortedLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  std::sort(lines.begin(), lines.end());
  return lines;
}

// What the library gives to a process, by the linker's own table: "NAME ok" for each.
std::vector<std::string> AllCallsOk() {
  const ProgramResult table = RunProgram({"nm", "-D", "--defined-only", "--format=posix", ZQSIM_SHIM});
  std::vector<std::string> lines;
  for (const std::string& line : SortedLines(table.output)) {
    std::istringstream words(line);
    std::string name;
    std::string kind;
    words >> name >> kind;
    if (kind == "T") lines.push_back(name.substr(0, name.find('@')) + " ok");
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

TEST_F(Calls, EachReachesTheDevice) {
  const ProgramResult result = Run({ZQSIM_PROBES "/zqsim_probe"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "");
  const std::vector<std::string> expected = AllCallsOk();
  EXPECT_GT(expected.size(), 100U);
  EXPECT_EQ(SortedLines(result.output), expected);
}

TEST_F(Calls, NoneReachesTheDeviceWithoutTheLibrary) {
  const ProgramResult result =
      RunProgram({ZQSIM_PROBES "/zqsim_probe"}, {.environment = {"ZQ_DEVICE=" + Root()}});
  EXPECT_EQ(result.output.find(" ok\n"), std::string::npos) << result.output;
}

// A sanitizer's runtime stands before dlopen too, and loses the caller; then there is nothing for the device
// to keep.
TEST_F(Calls, ALibraryFindsAnotherBesideItselfByNameAsItDoesOnTheMachine) {
  const std::vector<std::string> ask = {ZQSIM_PROBES "/zqsim_probe_ask",
                                        ZQSIM_PROBES "/libzqsim_probe_asker.so"};
  const int onMachine = RunProgram(ask).status;
  if (std::string(ZQSIM_SANITIZER_RUNTIME).empty()) {
    EXPECT_EQ(onMachine, 0);
  }
  EXPECT_EQ(Run(ask).status, onMachine);
}

}  // namespace
