// The module's trace.
#ifndef ZQUTIL_TRACE_H
#define ZQUTIL_TRACE_H

#include <atomic>

#include "zq_trace.h"

// The instance "zqutil" while a singleton lives; 0 otherwise, which the trace accepts.
extern std::atomic<int> ZQUtilTraceInstance;

#define ZQUTIL_TRACE(...) zq_Trace(ZQUtilTraceInstance, ZQ_TRACE_NORMAL, 1, true, __VA_ARGS__)

#endif
