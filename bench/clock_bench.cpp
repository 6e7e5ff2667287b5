// What the clock's time zones and the about summary cost: the list of zones against `find` over the same tree with the
// same folders pruned, its share of the module's start, and what scripts wait for. All but the first is measured on a
// simulated device, where it starts itself again.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "ZQDateTime.h"
#include "ZQUtil.h"
#include "ratio.h"
#include "temp_dir.h"

namespace {

constexpr int kRounds = 40;

constexpr char kScript[] = R"(
const util = new ZQUtil();
const zones = util.getTZList();
const rows = zones.map((zone) => [zone.Name, zone.Description]);
const each = (count, work) => {
  const start = Date.now();
  for (let i = 0; i < count; i += 1) work();
  return (Date.now() - start) * 1000 / count;
};
const literal = () => rows.map(([name, description]) => ({ Name: name, Description: description }));
each(200, () => util.getTZList());
each(200, literal);
print(`getTZList of ${zones.length} zones to a script array: ${each(2000, () => util.getTZList()).toFixed(0)} us, ` +
      `the same array made by a script ${each(2000, literal).toFixed(0)} us`);
let left = 300;
let start = 0;
const again = () => util.registerAboutListener({
  onResult() {
    if (left === 300) start = Date.now();
    left -= 1;
    if (left > 0) return void setTimeout(again, 0);
    print(`about summary, from the registration to onResult: ${((Date.now() - start) / 299).toFixed(2)} ms`);
    exit(0);
  },
});
again();
)";

void BuildList() {
  const ZQDateTime dateTime(true);
}

void Find() {
  const char* const words[] = {"find",  "/usr/share/zoneinfo",
                               "(",     "-name",
                               "posix", "-o",
                               "-name", "right",
                               ")",     "-prune",
                               "-o",    "-print",
                               nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  if (posix_spawnp(&child, words[0], &actions, nullptr, const_cast<char**>(words), environ) != 0)
    std::abort();
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  if (waitpid(child, &status, 0) != child || status != 0) std::abort();
}

void StartModule() {
  ZQUtil::Instance();
  ZQUtil::Dereference();
}

// A tree of so many files that the start of a program does not count. The working folder is the device's.
bool MeasureBigTree() {
  for (int folder = 0; folder < 50; ++folder) {
    const std::string path = "usr/share/zoneinfo/America/" + std::to_string(folder);
    std::filesystem::create_directories(path);
    for (int file = 0; file < 1000; ++file) WriteFile(path + "/City" + std::to_string(file), "");
  }
  const bench::Pair list = bench::Best(5, BuildList, Find);
  std::printf("the same of 50,000 files %.1f ms, find %.1f ms\n", list.ours * 1e3, list.theirs * 1e3);
  return bench::Report("the list of zones against find, 50,000 files", list.Ratio(), 1.2);
}

int MeasureOnDevice() {
  const bench::Pair start = bench::Best(kRounds, BuildList, StartModule);
  std::printf("start and end of the module: %.0f us, the list of zones in it %.0f us (%.0f %%)\n",
              start.theirs * 1e6, start.ours * 1e6, start.Ratio() * 100);
  std::fflush(stdout);
  WriteFile("clock.js", kScript);
  const bool told = std::system("'" SOREL_PROGRAM "' clock.js") == 0;
  return MeasureBigTree() && told ? 0 : 1;
}

}  // namespace

int main() {
  if (std::getenv("ZQ_DEVICE") != nullptr) return MeasureOnDevice();
  setenv("ZQ_TRACE", "off", 1);
  const bench::Pair list = bench::Best(kRounds, BuildList, Find);
  std::printf("list of zones %.0f us, find %.0f us\n", list.ours * 1e6, list.theirs * 1e6);
  const bool kept = bench::Report("the list of zones against find over the same tree", list.Ratio(), 1.2);
  std::fflush(stdout);
  const TempDir folder("/dev/shm");
  const std::string command = "'" ZQ_SIM_PROGRAM "' run '" + (folder / "device") + "' -- '" +
                              std::filesystem::read_symlink("/proc/self/exe").string() + "'";
  return std::system(command.c_str()) == 0 && kept ? 0 : 1;
}
