#include "tool_commands.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>

#include "device_store.h"
#include "file_lock.h"
#include "mend_store.h"
#include "store.h"

namespace {

constexpr char kHelp[] =
    "usage: nvram init [--force]   make an empty store; --force empties one that is there\n"
    "       nvram get KEY          print the value; status 1, and nothing printed, when there is no such "
    "key\n"
    "       nvram set KEY VALUE    store the value\n"
    "       nvram erase KEY        remove the key\n"
    "       nvram list             print KEY=VALUE lines by key; line breaks in values are shown as \\n and "
    "\\r\n"
    "       nvram --help           print this\n"
    "\n"
    "The file that $ZQ_NVRAM_CONFIG names, else /etc/fw_env.config, says where the store is.\n"
    "Status: 0 done, 1 no such key, 2 wrong usage, 3 the store failed.\n";

using Words = std::vector<std::string>;

ToolAnswer Done(std::string text = {}) {
  return {kToolDone, std::move(text), {}};
}
ToolAnswer Failed(std::string why) {
  return {kToolStoreFailed, {}, std::move(why)};
}

ToolAnswer WithStore(const std::function<ToolAnswer(Store&)>& action) {
  std::string why;
  const std::unique_ptr<Store> store = Store::Open(StoreConfigPath(), why);
  return store ? action(*store) : Failed(why);
}

constexpr char kHeld[] = " holds a store already; nvram init --force empties it";

std::string InitFiles(const StoreConfig& config, bool force) {
  const FileLock tools(kToolsLock, O_WRONLY | O_CREAT);
  return !force && HoldsStore(config) ? config.copies[0].path + kHeld : EraseStore(config);
}

std::string InitDevices(const std::string& path, const StoreConfig& config, bool force) {
  return !force && LibraryFindsStore(path) ? config.copies[0].path + kHeld
                                           : EraseThroughLibrary(path, config);
}

ToolAnswer Init(const Words& words) {
  const bool force = words.size() == 1;
  if (force && words[0] != "--force") return {kToolUsage, {}, "init knows --force, not " + words[0]};
  const std::string path = StoreConfigPath();
  StoreConfig config;
  std::string why = ReadStoreConfig(path, config);
  if (!why.empty()) return Failed(why);
  const FileLock turn(path, O_RDONLY);
  if (!turn.Held()) return Failed("cannot lock " + path + ": " + strerror(errno));
  why = IsOnDevice(config) ? InitDevices(path, config, force) : InitFiles(config, force);
  return why.empty() ? Done() : Failed(why);
}

ToolAnswer Get(const Words& words) {
  return WithStore([&](Store& store) -> ToolAnswer {
    const std::optional<std::string> value = store.Get(words[0]);
    return value ? Done(*value + "\n") : ToolAnswer{kToolMissingKey, {}, {}};
  });
}

ToolAnswer Set(const Words& words) {
  return WithStore([&](Store& store) {
    const std::string why = store.Set(words[0], words[1]);
    return why.empty() ? Done() : Failed("cannot set " + words[0] + ": " + why);
  });
}

ToolAnswer Erase(const Words& words) {
  return WithStore([&](Store& store) {
    const std::string why = store.Erase(words[0]);
    return why.empty() ? Done() : Failed("cannot erase " + words[0] + ": " + why);
  });
}

std::string OneLine(const std::string& value) {
  std::string line;
  for (const char c : value) {
    if (c == '\n')
      line += "\\n";
    else if (c == '\r')
      line += "\\r";
    else
      line += c;
  }
  return line;
}

ToolAnswer List(const Words& /*words*/) {
  return WithStore([](Store& store) {
    std::string text;
    for (const auto& [key, value] : store.List()) text += OneLine(key) + "=" + OneLine(value) + "\n";
    return Done(text);
  });
}

ToolAnswer Help(const Words& /*words*/) {
  return Done(kHelp);
}

struct Command {
  const char* name;
  size_t fewest;  // words after the name
  size_t most;
  ToolAnswer (*run)(const Words& words);
};

constexpr Command kCommands[] = {
    {"init", 0, 1, Init}, {"get", 1, 1, Get},     {"set", 2, 2, Set}, {"erase", 1, 1, Erase},
    {"list", 0, 0, List}, {"--help", 0, 0, Help}, {"-h", 0, 0, Help},
};

}  // namespace

ToolAnswer RunTool(const std::vector<std::string>& words) {
  if (words.empty()) return {kToolUsage, {}, "what? (nvram --help says what there is)"};
  const auto* command = std::find_if(std::begin(kCommands), std::end(kCommands),
                                     [&](const Command& known) { return known.name == words[0]; });
  if (command == std::end(kCommands))
    return {kToolUsage, {}, "no command \"" + words[0] + "\"; see nvram --help"};
  const Words rest(words.begin() + 1, words.end());
  if (rest.size() < command->fewest || rest.size() > command->most)
    return {
        kToolUsage,
        {},
        words[0] + " has too " + (rest.size() > command->most ? "many" : "few") + " words; see nvram --help"};
  return command->run(rest);
}
