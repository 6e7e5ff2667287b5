#include "platform_trace.h"

int PlatformTraceInstance() {
  static const int instance = zq_TraceCreate("zqos", __FILE__, __LINE__);
  return instance;
}
