// A program of somebody else's, built against what is installed.
#include <cstdio>

#include "engine.h"
#include "nvram.h"
#include "zqos.h"

int main() {
  const int trace = zq_TraceCreate("consumer", __FILE__, __LINE__);
  zq_Trace(trace, ZQ_TRACE_NORMAL, 1, true, "hello from %s\n", "outside");
  const bool void_is_void = ZQ_VALUE_VOID == 0x80000001;
  std::printf("%s %d\n", void_is_void ? "ok" : "wrong", nvram_open(0, 0) == -1);
  return 0;
}
