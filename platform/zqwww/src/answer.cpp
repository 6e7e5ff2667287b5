#include "answer.h"

#include <memory>

#include "www_trace.h"

bool ReceiveAnswer(Connection& connection, const ResponseRules& rules, const ResponseReader::Sink& sink,
                   const char* server) {
  const size_t piece = connection.Piece();
  const auto buffer = std::make_unique_for_overwrite<char[]>(piece);
  ResponseReader reader(rules, sink);
  ResponseReader::State state = ResponseReader::State::kMore;
  while (state == ResponseReader::State::kMore) {
    const ssize_t size = connection.Receive(buffer.get(), piece);
    if (size < 0) return false;
    state = size > 0 ? reader.Feed(buffer.get(), static_cast<size_t>(size)) : reader.End();
  }
  if (state == ResponseReader::State::kBad)
    WwwFailure("%s: answer refused: %s\n", server, reader.Why().c_str());
  return state == ResponseReader::State::kWhole;
}
