#include "trace_capture.h"

#include <algorithm>
#include <regex>
#include <sstream>
#include <stdexcept>

#include "zq_trace.h"

TraceCapture::TraceCapture(int level) {
  if (!zq_TraceRedirect(Path().c_str(), level)) throw std::runtime_error("no trace file " + Path());
}

TraceCapture::~TraceCapture() {
  zq_TraceRedirect("off", 0);
}

std::string TraceCapture::Raw() const {
  return ReadFile(Path());
}

std::vector<TraceLine> TraceCapture::Lines() const {
  // Of a line that another thread is writing at this moment, half may be there.
  const std::string raw = Raw();
  return ParseTrace(raw.substr(0, raw.rfind('\n') + 1));
}

std::vector<std::string> TraceCapture::Texts() const {
  std::vector<std::string> texts;
  for (TraceLine& line : Lines()) texts.push_back(std::move(line.text));
  return texts;
}

bool TraceCapture::Has(std::string_view text) const {
  return std::ranges::count(Texts(), text) > 0;
}

std::vector<TraceLine> ParseTrace(const std::string& bytes) {
  static const std::regex form(R"((\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}) (-?\d+) (\S+) )");
  std::vector<TraceLine> lines;
  std::istringstream input(bytes);
  std::string row;
  while (std::getline(input, row)) {
    std::smatch head;
    if (std::regex_search(row, head, form, std::regex_constants::match_continuous)) {
      lines.push_back({head[1], std::stoi(head[2]), head[3], head.suffix()});
    } else if (!lines.empty()) {
      lines.back().text += "\n" + row;
    } else {
      throw std::runtime_error("no trace line: " + row);
    }
  }
  return lines;
}
