// Where trace lines go: the sinks behind the words of $ZQ_TRACE.
#ifndef ZQOS_TRACE_SINK_H
#define ZQOS_TRACE_SINK_H

#include <spdlog/sinks/sink.h>

#include <memory>
#include <string>

struct OpenedSink {
  bool opened = false;
  std::string error;                          // why it was not opened
  std::shared_ptr<spdlog::sinks::sink> sink;  // null when opened is true: "off"
};

// `destination`: "stderr", "syslog", "off", or a file's path, which is appended to and made when missing. The
// sink does not lock; every line is handed to the system before log() returns. May throw std::bad_alloc.
OpenedSink OpenTraceSink(const std::string& destination);

#endif
