// How the platform itself reports: a failure line under the instance "zqos".
#ifndef ZQOS_PLATFORM_TRACE_H
#define ZQOS_PLATFORM_TRACE_H

#include "zq_trace.h"

// The platform's own instance.
int PlatformTraceInstance();

#define PlatformFailure(...) zq_Trace(PlatformTraceInstance(), ZQ_TRACE_FAILURE, 1, true, __VA_ARGS__)

// A caller's __FILE__ as it can be printed.
inline const char* SourceName(const char* file) {
  return file != nullptr ? file : "-";
}

#endif
