#include "response_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using State = ResponseReader::State;

struct Reading {
  State state;
  std::string body;
  std::string last;  // "received/length" of the last call, "" without one
  std::string why;
};

Reading ReadAnswer(const std::string& bytes, size_t portion, const ResponseRules& rules = {},
                   bool ends = true) {
  Reading reading{};
  ResponseReader reader(rules, [&](const zq_HttpResponse& response) {
    reading.body.append(response.chunk, response.chunkLength);
    reading.last = std::to_string(response.received) + "/" + std::to_string(response.contentLength);
  });
  for (size_t at = 0; at < bytes.size(); at += portion) {
    reading.state = reader.Feed(bytes.data() + at, std::min(portion, bytes.size() - at));
  }
  if (ends) reading.state = reader.End();
  reading.why = reader.Why();
  return reading;
}

TEST(ResponseReader, ReadsTheSameInAnyPortions) {
  const std::string answers[] = {
      "HTTP/1.1 200 OK\r\nContent-Length: 10\r\nA: b\r\n\r\n0123456789",
      "HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n0123456789and more",
      "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
      "3;name=\"value\"\r\n012\r\n7\r\n3456789\r\n0\r\nTrailer: x\r\n\r\n",
      "HTTP/1.1 200 \r\ncontent-length:10\r\n\r\n0123456789",
  };
  for (const std::string& answer : answers) {
    for (size_t portion = 1; portion <= answer.size(); ++portion) {
      const Reading reading = ReadAnswer(answer, portion);
      EXPECT_EQ(reading.state, State::kWhole) << portion << " of " << answer << reading.why;
      EXPECT_EQ(reading.body, "0123456789");
      EXPECT_EQ(reading.last, "10/10");
    }
  }
}

TEST(ResponseReader, IsWholeBeforeTheConnectionEnds) {
  EXPECT_EQ(ReadAnswer("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n", 1000, {}, false).state, State::kWhole);
  EXPECT_EQ(ReadAnswer("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\na", 1000, {}, false).state, State::kMore);
}

TEST(ResponseReader, EveryCutIsBad) {
  const std::string answers[] = {
      "HTTP/1.1 200 OK\r\nContent-Length: 10\r\nA: b\r\n\r\n0123456789",
      "HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
      "3\r\n012\r\n0\r\nTrailer: x\r\n\r\n"};
  for (const std::string& answer : answers) {
    for (size_t size = 0; size < answer.size(); ++size) {
      EXPECT_EQ(ReadAnswer(answer.substr(0, size), 1000).state, State::kBad) << size;
      EXPECT_EQ(ReadAnswer(answer.substr(0, size), 1).state, State::kBad) << size;
    }
  }
}

TEST(ResponseReader, SaysWhyAnAnswerIsBad) {
  EXPECT_EQ(ReadAnswer("", 1).why, "no answer");
  EXPECT_EQ(ReadAnswer("HTTP/1.1 404 Not Found\r\n\r\n", 1000).why, "the status, status 404");
  EXPECT_EQ(ReadAnswer("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\na", 1000).why,
            "the answer is cut, status 200");
  EXPECT_EQ(ReadAnswer("HTTP/1.1 200 OK\r\n\r\na", 1000).why, "a body without a length, status 200");
  EXPECT_EQ(ReadAnswer("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n", 1000, {.maxBody = 8}).why,
            "too long a body, status 200");
  EXPECT_EQ(ReadAnswer("HTTP/1.1 200 OK\r\nTransfer-Encoding: gzip\r\n\r\n", 1000).why,
            "a transfer coding, status 200");
}

TEST(ResponseReader, ALimitIsForTheWholeBody) {
  const std::string chunks =
      "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n4\r\nabcd\r\n4\r\nefgh\r\n0\r\n\r\n";
  EXPECT_EQ(ReadAnswer(chunks, 1, {.maxBody = 8}).state, State::kWhole);
  EXPECT_EQ(ReadAnswer(chunks, 1, {.maxBody = 7}).state, State::kBad);
  const std::string toEnd = "HTTP/1.1 200 OK\r\n\r\nabcdefgh";
  EXPECT_EQ(ReadAnswer(toEnd, 3, {8, true}).state, State::kWhole);
  EXPECT_EQ(ReadAnswer(toEnd, 3, {7, true}).state, State::kBad);
}

// A portion that ends with the first byte of the next field: the library takes what is before it, and forgets its size.
constexpr char kNextBegun[] = "ield: value\r\nF";

TEST(ResponseReader, AHeaderWithoutAnEndIsBadAtItsLimitAndKeepsNothing) {
  for (const char* field : {"a", "Field: value\r\n", "A: b\r\n c", kNextBegun}) {
    ResponseReader reader({}, [](const zq_HttpResponse&) { ADD_FAILURE(); });
    State state = reader.Feed("HTTP/1.1 200 OK\r\n", 17);
    if (field == kNextBegun) state = reader.Feed("F", 1);
    size_t fed = 0;
    while (state == State::kMore && fed < 1000000) {
      state = reader.Feed(field, strlen(field));
      fed += strlen(field);
    }
    EXPECT_EQ(state, State::kBad) << field;
    EXPECT_LT(fed, 140000U) << field;
  }
}

TEST(ResponseReader, AChunkLineWithoutAnEndIsBadAtItsLimit) {
  for (const char* lead : {"1;", "1;a=\"", "0\r\n"}) {
    ResponseReader reader({}, [](const zq_HttpResponse&) { ADD_FAILURE(); });
    const std::string header = std::string("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n") + lead;
    State state = reader.Feed(header.data(), header.size());
    size_t fed = 0;
    for (; state == State::kMore && fed < 1000000; ++fed) state = reader.Feed("x", 1);
    EXPECT_EQ(state, State::kBad) << lead;
    EXPECT_LT(fed, 140000U) << lead;
  }
}

TEST(ResponseReader, ChunkSizesThatOverflowAreBad) {
  for (const char* size :
       {"ffffffffffffffff", "10000000000000000", "8000000000000000", "80000000", "-1", "0x1"}) {
    const std::string answer =
        std::string("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n") + size + "\r\nabc";
    EXPECT_EQ(ReadAnswer(answer, 1000).state, State::kBad) << size;
  }
}

TEST(ResponseReader, SaysTheSameAgainAfterItsEnd) {
  int calls = 0;
  ResponseReader reader({}, [&](const zq_HttpResponse&) { ++calls; });
  const std::string answer = "HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\na";
  EXPECT_EQ(reader.Feed(answer.data(), answer.size()), State::kWhole);
  EXPECT_EQ(reader.Feed(answer.data(), answer.size()), State::kWhole);
  EXPECT_EQ(reader.End(), State::kWhole);
  EXPECT_EQ(calls, 1);
}

}  // namespace
