// Any bytes as an answer, in portions and in one piece: both read the same, and no body is whole that is not.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "response_reader.h"

namespace {

constexpr size_t kPortions[] = {1, 2, 3, 5, 7, 16, 100, SIZE_MAX};
constexpr int64_t kMaxBody = 1000;

void Require(bool held) {
  if (!held) abort();
}

struct Reading {
  ResponseReader::State state = ResponseReader::State::kMore;
  std::string body;
  int64_t length = -1;  // of the last call
  bool operator==(const Reading&) const = default;
};

Reading Read(const std::string& bytes, size_t portion, const ResponseRules& rules) {
  Reading reading;
  bool over = false;
  ResponseReader reader(rules, [&](const zq_HttpResponse& response) {
    Require(!over && response.status / 100 == 2 && response.status != 206);
    reading.body.append(response.chunk, response.chunkLength);
    Require(response.received == static_cast<int64_t>(reading.body.size()) && response.received <= kMaxBody);
    Require(response.contentLength == 0 || response.contentLength >= response.received);
    over = response.contentLength == response.received;
    reading.length = response.contentLength;
  });
  for (size_t at = 0; at < bytes.size() && reading.state == ResponseReader::State::kMore;) {
    const size_t size = std::min(portion, bytes.size() - at);
    reading.state = reader.Feed(bytes.data() + at, size);
    at += size;
  }
  reading.state = reader.End();
  Require(over == (reading.state == ResponseReader::State::kWhole));
  Require((reading.state == ResponseReader::State::kBad) == !reader.Why().empty());
  return reading;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const ResponseRules rules{.maxBody = kMaxBody, .endMayBeTold = (data[0] & 1) != 0};
  const size_t portion = kPortions[(data[0] >> 1) & 7];
  const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  const Reading whole = Read(bytes, SIZE_MAX, rules);
  const Reading parts = Read(bytes, portion, rules);
  Require(parts.state == whole.state);
  if (whole.state == ResponseReader::State::kWhole) Require(parts == whole);
  return 0;
}
