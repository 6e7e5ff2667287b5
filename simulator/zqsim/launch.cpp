#include "launch.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <system_error>

#include "lexical_path.h"
#include "path_rules.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kPreload = "LD_PRELOAD";
constexpr const char* kHostPaths = "ZQ_SIM_HOST_PATHS";
constexpr const char* kShimName = "libzqsim.so";

std::string Environment(const char* name) {
  const char* value = getenv(name);
  return value == nullptr ? "" : value;
}

std::vector<std::string> Split(const std::string& text, const char* separators) {
  std::vector<std::string> words;
  size_t start = 0;
  while ((start = text.find_first_not_of(separators, start)) != std::string::npos) {
    const size_t end = text.find_first_of(separators, start);
    words.push_back(text.substr(start, end - start));
    start = end == std::string::npos ? text.size() : end;
  }
  return words;
}

bool IsProgram(const fs::path& path) {
  std::error_code error;
  return fs::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0;
}

// What a caller who works below /tmp means by an argument that names a file there which the device lacks: the
// folder, which is the machine's then. In /tmp itself the device's trigger files are, so that only the one
// file is the machine's, and only for a caller who stands in /tmp.
fs::path WorkPath(const std::string& argument, const fs::path& root) {
  const fs::path path = fs::path(argument).lexically_normal();
  fs::path folder = path.parent_path();
  std::error_code error;
  if (!IsAtOrBelow(folder.native(), "/tmp") || !fs::exists(path, error)) return {};
  if (fs::exists(root / path.relative_path(), error)) return {};
  if (folder != "/tmp") return folder;
  return fs::current_path(error) == folder ? path : fs::path();
}

int Complain(const std::string& what, const std::string& why, int status) {
  fprintf(stderr, "zqsim: %s: %s\n", what.c_str(), why.c_str());
  return status;
}

}  // namespace

fs::path FindProgram(const std::string& command, const fs::path& root) {
  std::error_code error;
  if (command.find('/') != std::string::npos) {
    fs::path path = fs::absolute(command, error).lexically_normal();
    fs::path onDevice = root / path.relative_path();
    const DeviceView view{root.native(), ""};
    if (command.starts_with('/') && OwnerOf(path.native(), view) != Owner::kMachine &&
        fs::exists(onDevice, error)) {
      return onDevice;
    }
    return fs::exists(path, error) ? path : fs::path();
  }
  for (const std::string& folder : Split(Environment("PATH"), ":")) {
    fs::path path = fs::absolute(fs::path(folder) / command, error);
    if (IsProgram(path)) return path;
  }
  return {};
}

std::string HostPaths(const std::string& before, const Places& places, const fs::path& program,
                      const std::vector<std::string>& arguments, const fs::path& root) {
  std::string paths = before;
  const auto add = [&paths](const fs::path& path) {
    const std::string& text = path.native();
    if (text.size() < 2 || text.find(':') != std::string::npos) return;
    if ((":" + paths + ":").find(":" + text + ":") != std::string::npos) return;
    paths += (paths.empty() ? "" : ":") + text;
  };
  std::error_code error;
  add(places.prefix);
  add(fs::current_path(error));
  // The caller's folder by the name that it goes by in the caller's shell.
  const fs::path named = Environment("PWD");
  if (named.is_absolute() && fs::equivalent(named, ".", error)) add(named);
  // The program by itself too: its folder may be a whole tree of the device's, like /tmp.
  for (const fs::path& path : {program, fs::canonical(program, error)}) {
    add(path.parent_path());
    if (OwnerOf(path.native(), {root.native(), ""}) != Owner::kMachine) add(path);
  }
  for (const std::string& argument : arguments) add(WorkPath(argument, root));
  return paths;
}

std::string Preloads(const std::string& before, const fs::path& shim) {
  // Empty in a build without sanitizers.
  static constexpr char kRuntime[] = ZQSIM_SANITIZER_RUNTIME;
  std::string libraries = kRuntime;
  if (!libraries.empty()) libraries += ':';
  libraries += shim.native();
  for (const std::string& library : Split(before, ": ")) {
    if (library != kRuntime && library != shim.native()) libraries += ':' + library;
  }
  return libraries;
}

void PutToolsOnPath(const Places& places) {
  const std::string tools = (places.prefix / "bin").string();
  const std::string before = Environment("PATH");
  if ((":" + before + ":").find(":" + tools + ":") != std::string::npos) return;
  setenv("PATH", (before.empty() ? tools : tools + ":" + before).c_str(), 1);
}

int Enter(const std::vector<std::string>& command, const fs::path& root, const Places& places,
          fs::path* program) {
  if (access(places.shim.c_str(), R_OK) != 0) return Complain(places.shim, strerror(errno), 1);
  if (places.shim.native().find_first_of(": ") != std::string::npos) {
    return Complain(places.shim, "cannot be preloaded from a folder with a blank or colon in its path", 1);
  }
  PutToolsOnPath(places);
  *program = FindProgram(command.front(), root);
  if (program->empty()) return Complain(command.front(), "not found", 127);

  const std::string hostPaths = HostPaths(Environment(kHostPaths), places, *program, command, root);
  setenv(kHostPaths, hostPaths.c_str(), 1);
  setenv(kPreload, Preloads(Environment(kPreload), places.preload).c_str(), 1);
  setenv("ZQ_DEVICE", root.c_str(), 1);
  setenv("PWD", root.c_str(), 1);
  unsetenv("OLDPWD");
  // The device's own /etc/fw_env.config counts.
  unsetenv("ZQ_NVRAM_CONFIG");
  // The device's sound card, whatever the machine has.
  setenv("ALSA_CONFIG_PATH", places.sound.c_str(), 1);
  setenv("ZQ_SIM_MIXER", places.mixer.c_str(), 1);
  if (chdir(root.c_str()) != 0) return Complain(root, strerror(errno), 1);
  return 0;
}

int Become(const fs::path& program, const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  execv(program.c_str(), arguments.data());
  return Complain(program, strerror(errno), 126);
}

void LeaveDevice(char** arguments) {
  std::string kept;
  bool preloaded = false;
  for (const std::string& library : Split(Environment(kPreload), ": ")) {
    if (fs::path(library).filename() == kShimName) {
      preloaded = true;
    } else {
      kept += (kept.empty() ? "" : ":") + library;
    }
  }
  if (!preloaded) return;
  unsetenv("ZQ_DEVICE");
  if (kept.empty()) {
    unsetenv(kPreload);
  } else {
    setenv(kPreload, kept.c_str(), 1);
  }
  execv("/proc/self/exe", arguments);
}
