// Reads one HTTP/1.1 answer from bytes as they come.
#ifndef ZQWWW_RESPONSE_READER_H
#define ZQWWW_RESPONSE_READER_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "zqwww.h"

struct ResponseRules {
  int64_t maxBody = INT32_MAX;  // bytes
  bool endMayBeTold = false;    // a body may end with the connection: a cut would be told from an end
};

// One thread at a time.
class ResponseReader {
 public:
  enum class State { kMore, kWhole, kBad };
  // Gets the pieces of the body as zqwww.h says; those of an answer that does not count never come.
  using Sink = std::function<void(const zq_HttpResponse&)>;

  ResponseReader(const ResponseRules& rules, Sink sink);
  ResponseReader(const ResponseReader&) = delete;
  ResponseReader& operator=(const ResponseReader&) = delete;
  ~ResponseReader();

  // Takes bytes in any portions. Once it said kWhole or kBad it takes no more and says the same again.
  State Feed(const char* bytes, size_t size);
  // The connection has ended.
  State End();
  // Of a bad answer: what is wrong with it.
  const std::string& Why() const;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

#endif
