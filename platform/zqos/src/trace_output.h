// The one place where trace lines leave the process: destination, cut, and their turn-taking. Any thread.
#ifndef ZQOS_TRACE_OUTPUT_H
#define ZQOS_TRACE_OUTPUT_H

#include <atomic>
#include <climits>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace spdlog::sinks {
class sink;
}

class TraceOutput {
 public:
  // Never destroyed: threads trace until the process is gone.
  static TraceOutput& Get();

  // Lines below this level go nowhere. INT_MIN: nobody has traced yet and the environment is still to be
  // read. INT_MAX: the trace is off.
  static std::atomic<int> cut;

  // Reads $ZQ_TRACE and $ZQ_TRACE_LEVEL unless that is done.
  void Configure();
  // Writes "stamp text\n". The stamps of one destination's lines never go back while the calendar does not.
  void Write(int level, std::string_view text);
  // See zq_TraceRedirect.
  bool Redirect(const char* destination, int level);

 private:
  // Under the mutex.
  void ConfigureLocked();
  void SetCut(int level);
  void WriteLocked(int level, std::string_view text);

  std::mutex mutex_;
  bool configured_ = false;
  std::string destination_;
  std::shared_ptr<spdlog::sinks::sink> sink_;
};

#endif
