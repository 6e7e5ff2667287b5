#include <cstdio>
#include <cstdlib>
#include <string>

#include "device.h"
#include "host.h"
#include "options.h"
#include "zq_thread.h"

namespace {

constexpr int kFailure = 1;
constexpr int kUsageError = 2;

int Complain(const std::string& error, int status) {
  fprintf(stderr, "sorel: %s\n", error.c_str());
  return status;
}

}  // namespace

int main(int argc, char* argv[]) {
  sorel::Options options;
  std::string error;
  if (!sorel::ParseOptions({argv + 1, argv + argc}, &options, &error)) return Complain(error, kUsageError);
  if (options.help) {
    fputs(sorel::kUsage, stdout);
    return EXIT_SUCCESS;
  }
  if (options.version) {
    puts("sorel " SOREL_VERSION);
    return EXIT_SUCCESS;
  }
  if (!options.device.empty() && !sorel::OnDevice()) return Complain(sorel::EnterDevice(options), kFailure);
  if (options.trace) setenv("ZQ_TRACE", "stderr", 0);
  sorel::Host host;
  // No destructor runs: threads of modules that did load may be at work.
  if (!host.Start(options, &error)) zq_ExitProcess(Complain(error, kFailure));
  host.Run();
  host.End();
}
