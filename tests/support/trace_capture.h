// What is traced while it lives.
#ifndef ZQ_TEST_TRACE_CAPTURE_H
#define ZQ_TEST_TRACE_CAPTURE_H

#include <climits>
#include <string>
#include <string_view>
#include <vector>

#include "temp_dir.h"

// A trace line's parts.
struct TraceLine {
  std::string stamp;  // "2026-11-21T09:00:00.123"
  int level;
  std::string name;
  std::string text;  // may hold line breaks
};

// Sends the trace to a file of its own; the end turns the trace off. One at a time.
class TraceCapture {
 public:
  explicit TraceCapture(int level = INT_MIN);
  TraceCapture(const TraceCapture&) = delete;
  TraceCapture& operator=(const TraceCapture&) = delete;
  ~TraceCapture();

  // All whole lines until now, in their order.
  std::vector<TraceLine> Lines() const;
  // Their texts.
  std::vector<std::string> Texts() const;
  // Whether a line's text is this one.
  bool Has(std::string_view text) const;
  // The file's bytes.
  std::string Raw() const;
  std::string Path() const { return folder_ / "trace"; }

 private:
  TempDir folder_;
};

// Takes a trace file apart. A row that is no trace line belongs to the text before it.
std::vector<TraceLine> ParseTrace(const std::string& bytes);

#endif
