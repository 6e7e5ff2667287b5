#include "run_program.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "child_process.h"
#include "temp_dir.h"

namespace {

constexpr int kNoProgram = 127;

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
  const bool ready = freopen("/dev/null", "r", stdin) != nullptr &&
                     freopen(output.c_str(), "w", stdout) != nullptr &&
                     freopen(errors.c_str(), "w", stderr) != nullptr &&
                     (setting.folder.empty() || chdir(setting.folder.c_str()) == 0) &&
                     (setting.user == 0 || setresuid(setting.user, setting.user, setting.user) == 0);
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
