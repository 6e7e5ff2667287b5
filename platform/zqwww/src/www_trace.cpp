#include "www_trace.h"

int WwwTraceInstance() {
  static const int instance = zq_TraceCreate("zqwww", __FILE__, __LINE__);
  return instance;
}
