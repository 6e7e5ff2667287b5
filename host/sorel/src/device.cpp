#include "device.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

namespace sorel {

bool OnDevice() {
  const char* device = getenv("ZQ_DEVICE");
  return device != nullptr && *device != '\0';
}

std::string EnterDevice(const Options& options) {
  std::error_code error;
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
  const std::filesystem::path folder = std::filesystem::current_path(error);
  const std::string simulator = (self.parent_path() / "zqsim").string();
  std::vector<std::string> words = {simulator, "run", options.device, "--", self.string()};
  const std::vector<std::string> arguments = ArgumentsFor(options, folder.string());
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  execv(simulator.c_str(), pointers.data());
  return simulator + ": " + strerror(errno);
}

}  // namespace sorel
