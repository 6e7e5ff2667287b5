#include <cerrno>
#include <charconv>
#include <cstdarg>
#include <exception>

#include "trace_instances.h"
#include "trace_output.h"
#include "trace_text.h"
#include "zq_trace.h"

namespace {

TraceInstances& Instances() {
  static auto* const instances =
      new TraceInstances;  // never destroyed: threads trace until the process is gone
  return *instances;
}

// Out of line, so that a call whose line goes nowhere does not pay for the frame.
__attribute__((noinline, format(printf, 3, 0))) void WriteLine(int instance, int level, const char* format,
                                                               va_list arguments) try {
  const int error = errno;
  TraceOutput& output = TraceOutput::Get();
  output.Configure();
  if (level < TraceOutput::cut.load(std::memory_order_relaxed)) {
    errno = error;
    return;
  }
  TraceText line;
  char number[16];
  const auto digits = std::to_chars(number, number + sizeof number, level);
  line.Append(std::string_view(number, static_cast<size_t>(digits.ptr - number)));
  line.Append(" ");
  line.Append(Instances().NameOf(instance).data());
  line.Append(" ");
  errno = error;
  line.Append(format, arguments);
  line.DropLineEnd();
  output.Write(level, line.View());
  errno = error;
} catch (const std::exception&) {  // no memory for the line: it is lost, the caller is not
}

}  // namespace

int zq_TraceCreate(const char* name, const char* file, int line) {
  const int instance = Instances().Create(name);
  if (instance == 0) {
    zq_Trace(0, ZQ_TRACE_FAILURE, 1, true, "no trace instance left for %s (%s:%d)",
             name != nullptr ? name : "-", file != nullptr ? file : "-", line);
  }
  return instance;
}

void zq_TraceRelease(int instance) {
  Instances().Release(instance);
}

void zq_Trace(int instance, int level, int /*channel*/, bool /*flush*/, const char* format, ...) {
  if (level < TraceOutput::cut.load(std::memory_order_relaxed) || format == nullptr) return;
  va_list arguments;
  va_start(arguments, format);
  WriteLine(instance, level, format, arguments);
  va_end(arguments);
}

bool zq_TraceRedirect(const char* destination, int level) try {
  return TraceOutput::Get().Redirect(destination, level);
} catch (const std::exception&) {
  return false;
}
