// What a trace line costs: when it goes nowhere, beside a call that does nothing; and on its way into a file.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "empty_call.h"
#include "zq_trace.h"

namespace {

void EmptyCall(benchmark::State& state) {
  int number = 0;
  for (auto _ : state) DoNothing(0, ZQ_TRACE_NORMAL, 1, false, "ZQUtil %s %d", "MM_Init", number++);
}
BENCHMARK(EmptyCall);

void TraceOff(benchmark::State& state) {
  zq_TraceRedirect("off", 0);
  int number = 0;
  for (auto _ : state) zq_Trace(0, ZQ_TRACE_NORMAL, 1, false, "ZQUtil %s %d", "MM_Init", number++);
}
BENCHMARK(TraceOff);

// The trace goes somewhere, but not this line.
void TraceBelowTheCut(benchmark::State& state) {
  zq_TraceRedirect("/dev/null", ZQ_TRACE_FAILURE);
  int number = 0;
  for (auto _ : state) zq_Trace(0, ZQ_TRACE_NORMAL, 1, false, "ZQUtil %s %d", "MM_Init", number++);
  zq_TraceRedirect("off", 0);
}
BENCHMARK(TraceBelowTheCut);

void TraceToFile(benchmark::State& state) {
  char path[] = "/tmp/zqutil-trace-bench-XXXXXX";
  const int fd = mkstemp(path);
  if (fd < 0 || !zq_TraceRedirect(path, 0)) return state.SkipWithError("no file");
  const int instance = zq_TraceCreate("zqutil", __FILE__, __LINE__);
  int number = 0;
  for (auto _ : state) zq_Trace(instance, ZQ_TRACE_NORMAL, 1, false, "ZQUtil %s %d", "MM_Init", number++);
  zq_TraceRelease(instance);
  zq_TraceRedirect("off", 0);
  close(fd);
  unlink(path);
}
BENCHMARK(TraceToFile);

// The floor of the line to a file: the system call alone, with a line of that length.
void WriteToFile(benchmark::State& state) {
  char path[] = "/tmp/zqutil-trace-bench-XXXXXX";
  const int fd = mkstemp(path);
  if (fd < 0) return state.SkipWithError("no file");
  const std::string line = "2026-11-21T09:00:00.123 10000 zqutil ZQUtil MM_Init 123456\n";
  for (auto _ : state) benchmark::DoNotOptimize(write(fd, line.data(), line.size()));
  close(fd);
  unlink(path);
}
BENCHMARK(WriteToFile);

}  // namespace

BENCHMARK_MAIN();
