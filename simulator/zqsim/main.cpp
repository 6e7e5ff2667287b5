// The tool of the simulated device: makes devices from ready profiles and runs commands on them.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "device_folder.h"
#include "launch.h"
#include "places.h"
#include "profile.h"
#include "supervise.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kUsage =
    "usage: zqsim create DIR [--profile NAME]\n"
    "       zqsim run DIR [--profile NAME] [--system | --supervised] -- COMMAND [ARGUMENT]...\n"
    "       zqsim profiles\n"
    "\n"
    "create    makes DIR a simulated device from a ready profile (default: home-phone).\n"
    "          A device that is there already stays as it is.\n"
    "run       runs COMMAND on the device whose root is DIR, made when missing or empty.\n"
    "          /etc, /proc, /sys, /tmp, /updates, /media, /brimvale, /dev/i2c-0, /var/lib/zq,\n"
    "          /var/lock and /run/lock are then the device's; the working folder is DIR.\n"
    "          Paths in $ZQ_SIM_HOST_PATHS (colon-separated) stay the machine's.\n"
    "          --system      runs the device's system scripts beside it, for as long as it runs:\n"
    "                        they do what the files in /tmp ask for; after a reboot COMMAND runs again.\n"
    "          --supervised  the same, and COMMAND runs again when it ends with status 0, too.\n"
    "                        Either ends after ten new starts.\n"
    "profiles  lists the ready profiles.\n"
    "--help, --version  say so.\n";
constexpr const char* kDefaultProfile = "home-phone";

struct Request {
  std::string folder;
  std::string profile = kDefaultProfile;
  bool named = false;  // the caller said which profile
  bool system = false;
  bool supervised = false;
  std::vector<std::string> command;
};

int Complain(const std::string& what) {
  fprintf(stderr, "zqsim: %s\n", what.c_str());
  return 1;
}

int BadUsage(const std::string& what) {
  fprintf(stderr, "zqsim: %s; see zqsim --help\n", what.c_str());
  return 2;
}

// Reads what follows the verb; the text is what is wrong with it, empty for nothing.
std::string ReadRequest(const std::vector<std::string>& words, Request& request) {
  for (size_t i = 0; i < words.size(); ++i) {
    if (words[i] == "--") {
      request.command.assign(words.begin() + static_cast<std::ptrdiff_t>(i) + 1, words.end());
      break;
    }
    if (words[i] == "--profile") {
      if (++i == words.size()) return "--profile needs a name";
      request.profile = words[i];
      request.named = true;
    } else if (words[i].starts_with("--profile=")) {
      request.profile = words[i].substr(strlen("--profile="));
      request.named = true;
    } else if (words[i] == "--system") {
      request.system = true;
    } else if (words[i] == "--supervised") {
      request.supervised = true;
    } else if (words[i].starts_with('-')) {
      return "what is \"" + words[i] + "\"?";
    } else if (!request.folder.empty()) {
      return "one DIR, and a command after \"--\": what is \"" + words[i] + "\"?";
    } else {
      request.folder = words[i];
    }
  }
  return request.folder.empty() ? "DIR is missing" : "";
}

bool Prepare(const Request& request, const Places& places, fs::path& root, std::string& error) {
  const fs::path profile = places.profiles / request.profile;
  std::error_code ignored;
  if (request.profile.find('/') != std::string::npos || !fs::exists(profile / "profile.txt", ignored)) {
    error = request.profile + ": there is no such profile in " + places.profiles.string() + ", but";
    for (const std::string& name : ProfileNames(places.profiles)) error += " " + name;
    return false;
  }
  if (!PrepareDevice(request.folder, profile, root, error)) return false;
  const std::string is = ProfileOf(root);
  if (request.named && !is.empty() && is != request.profile) {
    fprintf(stderr, "zqsim: %s is there already, made as %s, and stays as it is\n", request.folder.c_str(),
            is.c_str());
  }
  return true;
}

int ListProfiles(const Places& places) {
  for (const std::string& name : ProfileNames(places.profiles)) {
    std::string error;
    const auto text = ReadProfile(places.profiles / name, error);
    if (!text) return Complain(error);
    printf("%-12s%s\n", name.c_str(), text->about.c_str());
  }
  return 0;
}

int RunCommand(const Request& request, const fs::path& root, const Places& places) {
  fs::path program;
  const int status = Enter(request.command, root, places, &program);
  if (status != 0) return status;
  if (!request.system && !request.supervised) return Become(program, request.command);
  return Supervise({program, request.command, root, places, request.supervised});
}

int Run(const std::vector<std::string>& words) {
  if (words.empty()) return BadUsage("what to do?");
  const std::string& verb = words.front();
  if (verb == "--help" || verb == "-h" || verb == "help") {
    fputs(kUsage, stdout);
    return 0;
  }
  if (verb == "--version") {
    puts("zqsim " ZQSIM_VERSION);
    return 0;
  }
  const Places places = FindPlaces();
  if (verb == "profiles") return ListProfiles(places);
  if (verb != "create" && verb != "run") return BadUsage("what is \"" + verb + "\"?");

  Request request;
  const std::string wrong = ReadRequest({words.begin() + 1, words.end()}, request);
  if (!wrong.empty()) return BadUsage(wrong);
  if (verb == "create" && (request.system || request.supervised)) return BadUsage("create runs nothing");
  if ((verb == "run") == request.command.empty()) {
    return BadUsage(verb == "run" ? "COMMAND is missing after --" : "create takes no command");
  }
  fs::path root;
  std::string error;
  if (!Prepare(request, places, root, error)) return Complain(error);
  return verb == "run" ? RunCommand(request, root, places) : 0;
}

}  // namespace

int main(int count, char** arguments) {
  LeaveDevice(arguments);
  try {
    return Run({arguments + 1, arguments + count});
  } catch (const std::exception& problem) {
    return Complain(problem.what());
  }
}
