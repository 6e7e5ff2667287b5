// How the library reports: a failure line under the instance "zqwww".
#ifndef ZQWWW_WWW_TRACE_H
#define ZQWWW_WWW_TRACE_H

#include "zq_trace.h"

// The library's own instance.
int WwwTraceInstance();

#define WwwFailure(...) zq_Trace(WwwTraceInstance(), ZQ_TRACE_FAILURE, 1, true, __VA_ARGS__)

#endif
