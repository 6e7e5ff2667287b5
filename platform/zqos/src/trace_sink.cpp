#include "trace_sink.h"

#include <fcntl.h>
#include <spdlog/details/null_mutex.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/sinks/syslog_sink.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "write_all.h"

namespace {

// Writes each line with one write(), so that lines of several processes do not mix in one file.
class DescriptorSink : public spdlog::sinks::base_sink<spdlog::details::null_mutex> {
 public:
  DescriptorSink(int descriptor, bool owned) : descriptor_(descriptor), owned_(owned) {
    set_pattern("%Y-%m-%dT%H:%M:%S.%e %v");
  }
  DescriptorSink(const DescriptorSink&) = delete;
  DescriptorSink& operator=(const DescriptorSink&) = delete;
  ~DescriptorSink() override {
    if (owned_) close(descriptor_);
  }

 protected:
  void sink_it_(const spdlog::details::log_msg& message) override {
    spdlog::memory_buf_t line;
    // A full disk may have taken half a line: the next one that fits begins on a line of its own.
    if (torn_) line.push_back('\n');
    formatter_->format(message, line);
    const size_t written = WriteAll(descriptor_, line.data(), line.size());
    if (written > 0) torn_ = written < line.size();
  }
  void flush_() override {}

 private:
  const int descriptor_;
  const bool owned_;
  bool torn_ = false;
};

}  // namespace

OpenedSink OpenTraceSink(const std::string& destination) {
  if (destination == "off") return {true, {}, nullptr};
  if (destination == "stderr") return {true, {}, std::make_shared<DescriptorSink>(STDERR_FILENO, false)};
  if (destination == "syslog") {
    // Without the pattern: syslog stamps its lines itself.
    return {true, {}, std::make_shared<spdlog::sinks::syslog_sink_st>("", LOG_PID, LOG_USER, false)};
  }
  // Not blocking: the open of a pipe would wait for a reader, and with it the program's first line.
  const int flags = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY;
  const int descriptor = open(destination.c_str(), flags | O_NONBLOCK, 0644);
  if (descriptor >= 0) fcntl(descriptor, F_SETFL, flags);
  if (descriptor < 0) return {false, std::generic_category().message(errno), nullptr};
  return {true, {}, std::make_shared<DescriptorSink>(descriptor, true)};
}
