#include "options.h"

#include <filesystem>

namespace sorel {

const char kUsage[] =
    "usage: sorel [--device DIR] [--trace] [--module FILE]... [SCRIPT]\n"
    "Runs a script with class modules; without a script, a prompt.\n"
    "  --device DIR   run on the simulated device whose root is DIR; made when missing.\n"
    "                 Without it this machine is the device, with its network, clock and /tmp\n"
    "  --trace        show the trace on standard error\n"
    "  --module FILE  load this class module, in place of ZQUtil.so; may be repeated\n"
    "  --help         show this\n"
    "  --version      show the version\n"
    "SCRIPT \"-\" is standard input.\n";

namespace {

// "--device=DIR" as the two words that it stands for.
std::vector<std::string> WithoutEqualsSigns(const std::vector<std::string>& words) {
  std::vector<std::string> apart;
  for (auto word = words.begin(); word != words.end(); ++word) {
    if (*word == "--") {
      apart.insert(apart.end(), word, words.end());
      break;
    }
    const size_t end = word->find('=');
    const std::string option = word->substr(0, end);
    const bool joined = end != std::string::npos && (option == "--device" || option == "--module");
    apart.push_back(joined ? option : *word);
    if (joined) apart.push_back(word->substr(end + 1));
  }
  return apart;
}

}  // namespace

bool ParseOptions(const std::vector<std::string>& words, Options* options, std::string* error) {
  const std::vector<std::string> arguments = WithoutEqualsSigns(words);
  bool onlyScript = false;
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (onlyScript || argument == "-" || argument.empty() || argument[0] != '-') {
      if (!options->script.empty()) {
        *error = "one script at a time, and no arguments for it: " + argument;
        return false;
      }
      options->script = argument;
    } else if (argument == "--") {
      onlyScript = true;
    } else if (argument == "--help") {
      options->help = true;
    } else if (argument == "--version") {
      options->version = true;
    } else if (argument == "--trace") {
      options->trace = true;
    } else if (argument == "--device" || argument == "--module") {
      if (++i == arguments.size() || arguments[i].empty()) {
        *error = argument + " needs a " + (argument == "--device" ? "folder" : "file");
        return false;
      }
      if (argument == "--device") {
        options->device = arguments[i];
      } else {
        options->modules.push_back(arguments[i]);
      }
    } else {
      *error = "unknown option " + argument + "; see sorel --help";
      return false;
    }
  }
  return true;
}

std::vector<std::string> ArgumentsFor(const Options& options, const std::string& folder) {
  const auto absolute = [&folder](const std::string& path) {
    return (std::filesystem::path(folder) / path).lexically_normal().string();
  };
  std::vector<std::string> arguments;
  if (options.trace) arguments.emplace_back("--trace");
  for (const std::string& module : options.modules) {
    arguments.emplace_back("--module");
    arguments.push_back(absolute(module));
  }
  if (options.script == "-")
    arguments.push_back(options.script);
  else if (!options.script.empty())
    arguments.push_back(absolute(options.script));
  return arguments;
}

}  // namespace sorel
