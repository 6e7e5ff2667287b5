#include "device.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

namespace sorel {
namespace {

// What the caller named is the machine's, also below a folder that the device has too, like /tmp. (The simulator reads
// the variable: paths between colons.)
void KeepOnMachine(const std::vector<std::string>& arguments) {
  const char* const variable = "ZQ_SIM_HOST_PATHS";
  const char* const before = getenv(variable);
  std::string paths = before != nullptr ? before : "";
  for (const std::string& argument : arguments) {
    std::error_code error;
    if (!argument.starts_with('/') || !std::filesystem::exists(argument, error)) continue;
    paths += (paths.empty() ? "" : ":") + argument;
  }
  setenv(variable, paths.c_str(), 1);
}

}  // namespace

bool OnDevice() {
  const char* device = getenv("ZQ_DEVICE");
  return device != nullptr && *device != '\0';
}

std::string EnterDevice(const Options& options) {
  std::error_code error;
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
  const std::filesystem::path folder = std::filesystem::current_path(error);
  const std::string simulator = (self.parent_path() / "zqsim").string();
  std::vector<std::string> words = {simulator, "run", options.device, "--system", "--", self.string()};
  const std::vector<std::string> arguments = ArgumentsFor(options, folder.string());
  words.insert(words.end(), arguments.begin(), arguments.end());
  KeepOnMachine(arguments);
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  execv(simulator.c_str(), pointers.data());
  return simulator + ": " + strerror(errno);
}

}  // namespace sorel
