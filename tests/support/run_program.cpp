#include "run_program.h"

#include <linux/capability.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "child_process.h"
#include "temp_dir.h"

namespace {

constexpr int kNoProgram = 127;

// What root may do although a mode forbids it. A program that is started without these in its bounds lacks them. Another
// user has none.
bool ObeyModes() {
  if (geteuid() != 0) return true;
  for (const unsigned long might : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH}) {
    if (prctl(PR_CAPBSET_DROP, might, 0, 0, 0) != 0) return false;
  }
  return true;
}

// Returns, with an exit status, only when it cannot.
int BecomeProgram(const std::vector<std::string>& words, const ProgramSetting& setting,
                  const std::string& output, const std::string& errors) {
  for (const std::string& change : setting.environment) {
    const size_t equals = change.find('=');
    if (equals == std::string::npos) {
      unsetenv(change.c_str());
    } else {
      setenv(change.substr(0, equals).c_str(), change.c_str() + equals + 1, 1);
    }
  }
  const bool ready =
      freopen("/dev/null", "r", stdin) != nullptr && freopen(output.c_str(), "w", stdout) != nullptr &&
      freopen(errors.c_str(), "w", stderr) != nullptr &&
      (setting.folder.empty() || chdir(setting.folder.c_str()) == 0) && (!setting.obeysModes || ObeyModes());
  if (!ready) return kNoProgram;
  std::vector<char*> arguments;
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  execvp(arguments[0], arguments.data());
  perror(arguments[0]);
  return kNoProgram;
}

}  // namespace

ProgramResult RunProgram(const std::vector<std::string>& words, const ProgramSetting& setting) {
  const TempDir said;
  const std::string output = said / "output";
  const std::string errors = said / "errors";
  const pid_t child = InChild([&] { return BecomeProgram(words, setting, output, errors); });
  if (child < 0) throw std::runtime_error("no process");
  const int status = AwaitChild(child);
  return {status, ReadFile(output), ReadFile(errors)};
}
