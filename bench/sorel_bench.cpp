// What the host costs beside the least that runs a script over the same engine: a call of a native method that answers
// a string, and the start of the process.
#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "ratio.h"
#include "run_program.h"
#include "temp_dir.h"

namespace {

constexpr int kRounds = 7;
constexpr double kMillions =
    3;  // of calls in the script, whose milliseconds over this are nanoseconds a call
constexpr char kCalls[] =
    "(function() { let length = 0; const start = Date.now();\n"
    "for (let i = 0; i < 3000000; ++i) length += device.answer().length;\n"
    "print(Date.now() - start); })();\n";

std::string Output(const std::vector<std::string>& words) {
  ProgramResult result = RunProgram(words, {.environment = {"ZQ_TRACE=off"}});
  if (result.status != 0) throw std::runtime_error(words[0] + ": " + result.errors);
  return result.output;
}

}  // namespace

int main() {
  const TempDir folder;
  WriteFile(folder / "bare.js", kCalls);
  WriteFile(folder / "sorel.js", std::string("const device = new Probe();\n") + kCalls + "exit(0);\n");
  WriteFile(folder / "empty.js", "1\n");
  const auto sorel = [&](const std::string& script) -> std::vector<std::string> {
    return {SOREL_PROGRAM, "--module", SOREL_PROBE, folder / script};
  };
  const auto bare = [&](const std::string& script) -> std::vector<std::string> {
    return {BARE_PROGRAM, folder / script};
  };

  bench::Pair call;
  for (int round = 0; round < kRounds; ++round) {
    call.ours = std::min(call.ours, std::stod(Output(sorel("sorel.js"))) / kMillions);
    call.theirs = std::min(call.theirs, std::stod(Output(bare("bare.js"))) / kMillions);
  }
  const bench::Pair start = bench::Best(
      40, [&] { Output(sorel("empty.js")); }, [&] { Output(bare("empty.js")); });
  std::printf("a native call with a string result: sorel %.0f ns, bare %.0f ns\n", call.ours, call.theirs);
  std::printf("start to end of an empty script: sorel %.1f ms, bare %.1f ms\n", start.ours * 1e3,
              start.theirs * 1e3);
  const bool kept = bench::Report("native call with a string result / bare callback", call.Ratio(), 1.25);
  return bench::Report("process start / bare host", start.Ratio(), 1.50) && kept ? 0 : 1;
}
