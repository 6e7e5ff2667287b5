// Lines on their way to the system's log, caught at libc's call.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <syslog.h>

#include <cstdarg>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "zq_trace.h"

namespace {

using Logged = std::pair<int, std::string>;
std::vector<Logged> g_logged;

void Log(int priority, const char* format, va_list arguments) __attribute__((__format__(__printf__, 2, 0)));
void Log(int priority, const char* format, va_list arguments) {
  char text[1000];
  vsnprintf(text, sizeof text, format, arguments);
  g_logged.emplace_back(priority, text);
}

}  // namespace

// Stand before libc's; the second is what hardened builds call.
extern "C" {

__attribute__((visibility("default"))) void syslog(int priority, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  Log(priority, format, arguments);
  va_end(arguments);
}

__attribute__((visibility("default"), format(printf, 3, 4))) void __syslog_chk(int priority, int,
                                                                               const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  Log(priority, format, arguments);
  va_end(arguments);
}

}  // extern "C"

namespace {

using testing::ElementsAre;

TEST(TraceSyslog, LinesHaveLevelNameAndTextAndTheStampOfTheSystem) {
  g_logged.clear();
  ASSERT_TRUE(zq_TraceRedirect("syslog", 0));
  const int instance = zq_TraceCreate("zqutil", __FILE__, __LINE__);
  zq_Trace(instance, ZQ_TRACE_NORMAL, 1, true, "ZQUtil %s\n", "MM_Init");
  zq_Trace(0, ZQ_TRACE_FAILURE, 1, true, "100%% full");
  zq_TraceRelease(instance);
  zq_TraceRedirect("off", 0);
  zq_Trace(0, ZQ_TRACE_FAILURE, 1, true, "nowhere");
  EXPECT_THAT(g_logged, ElementsAre(Logged(LOG_INFO, "10000 zqutil ZQUtil MM_Init"),
                                    Logged(LOG_ERR, "30000 - 100% full")));
}

TEST(TraceSyslog, IsStillOpenAfterItWasOpenedAnew) {
  g_logged.clear();
  ASSERT_TRUE(zq_TraceRedirect("syslog", 0));
  ASSERT_TRUE(zq_TraceRedirect(nullptr, 20000));
  zq_Trace(0, ZQ_TRACE_NORMAL, 1, true, "cut");
  zq_Trace(0, 20000, 1, true, "kept");
  zq_TraceRedirect("off", 0);
  EXPECT_THAT(g_logged, ElementsAre(Logged(LOG_INFO, "20000 - kept")));
}

}  // namespace
