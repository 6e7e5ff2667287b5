#include "trace_output.h"

#include <spdlog/details/log_msg.h>
#include <spdlog/sinks/sink.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <system_error>

#include "trace_level.h"
#include "trace_sink.h"
#include "zq_trace.h"

namespace {

// What a relative path means is settled when it is given, not when the file is opened again.
std::string Absolute(const std::string& destination) {
  if (destination == "stderr" || destination == "syslog" || destination == "off") return destination;
  std::error_code error;
  const std::filesystem::path path = std::filesystem::absolute(destination, error);
  return error ? destination : path.string();
}

std::string FromEnvironment(const char* name) {
  const char* value = getenv(name);
  return value != nullptr ? value : "";
}

std::string FailureText(const std::string& text) {
  return std::to_string(ZQ_TRACE_FAILURE) + " zqos " + text;
}

}  // namespace

constinit std::atomic<int> TraceOutput::cut{INT_MIN};

TraceOutput& TraceOutput::Get() {
  static auto* const output = new TraceOutput;
  return *output;
}

void TraceOutput::Configure() {
  const std::lock_guard lock(mutex_);
  ConfigureLocked();
}

void TraceOutput::ConfigureLocked() {
  if (configured_) return;
  configured_ = true;
  const std::string wish = FromEnvironment("ZQ_TRACE");
  destination_ = wish.empty() ? "syslog" : Absolute(wish);
  OpenedSink opened = OpenTraceSink(destination_);
  std::string reason;
  if (!opened.opened) {
    reason = "trace to stderr, because " + destination_ + " cannot be opened: " + opened.error;
    destination_ = "stderr";
    opened = OpenTraceSink(destination_);
  }
  sink_ = std::move(opened.sink);
  const std::string level = FromEnvironment("ZQ_TRACE_LEVEL");
  const std::optional<int> number = TraceLevelFromText(level);
  SetCut(number.value_or(0));
  if (!reason.empty()) WriteLocked(ZQ_TRACE_FAILURE, FailureText(reason));
  if (!number && !level.empty()) {
    WriteLocked(ZQ_TRACE_FAILURE, FailureText("ZQ_TRACE_LEVEL is no number and is ignored: " + level));
  }
}

void TraceOutput::Write(int level, std::string_view text) {
  const std::lock_guard lock(mutex_);
  // Another thread may have redirected since the caller looked at the cut.
  if (level >= cut.load(std::memory_order_relaxed)) WriteLocked(level, text);
}

void TraceOutput::WriteLocked(int level, std::string_view text) {
  if (!sink_) return;
  const auto weight = level >= ZQ_TRACE_FAILURE ? spdlog::level::err : spdlog::level::info;
  sink_->log(spdlog::details::log_msg(spdlog::source_loc{}, {}, weight, {text.data(), text.size()}));
}

bool TraceOutput::Redirect(const char* destination, int level) {
  const std::lock_guard lock(mutex_);
  if (destination == nullptr) ConfigureLocked();
  const std::string next = destination != nullptr ? Absolute(destination) : destination_;
  OpenedSink opened = OpenTraceSink(next);
  if (!opened.opened) return false;
  configured_ = true;
  destination_ = next;
  sink_ = std::move(opened.sink);
  SetCut(level);
  return true;
}

void TraceOutput::SetCut(int level) {
  const int least = INT_MIN + 1;
  cut.store(sink_ ? std::max(level, least) : INT_MAX, std::memory_order_relaxed);
}
