#include "response_reader.h"

// The parser asserts that a last chunk's line is at least five bytes when it looks at it again, which a server that
// sends "0\r\n" and then single bytes disproves. It reads on rightly all the same.
#define BOOST_DISABLE_ASSERTS
#include <boost/beast/core/string.hpp>
#include <boost/beast/http/basic_parser.hpp>
#include <optional>
#include <utility>

namespace {

namespace http = boost::beast::http;
using boost::beast::string_view;
using boost::system::error_code;

constexpr uint32_t kMaxHeader = 65536;
constexpr int kMaxInterim = 16;
constexpr int kSwitchingProtocols = 101;
constexpr int kNoContent = 204;
constexpr int kPartialContent = 206;

bool Counts(int status) {
  return status / 100 == 2 && status != kPartialContent;
}

// One message. What it learns lies in plain members for the reader.
class Parser : public http::basic_parser<false> {
 public:
  explicit Parser(ResponseReader::Sink& sink) : sink_(sink) {
    eager(true);
    header_limit(kMaxHeader);
    // The reader has limits of its own; with none given here this version refuses every Content-Length.
    body_limit(UINT64_MAX);
  }

  int status = 0;
  std::optional<int64_t> length;  // none: chunks, or until the connection ends
  bool counts = false;            // the header is whole and the body is wanted
  const ResponseRules* rules = nullptr;
  const char* refusal = nullptr;

  // The last call, for bodies whose end none of their pieces told.
  void Finish() {
    if (!length || *length == 0) Give("", 0, received_);
  }

 private:
  void on_request_impl(http::verb, string_view, string_view, int, error_code&) override {}
  void on_response_impl(int code, string_view, int, error_code&) override { status = code; }
  void on_field_impl(http::field field, string_view, string_view value, error_code& error) override {
    if (field == http::field::transfer_encoding && !boost::beast::iequals(value, "chunked")) {
      Refuse("a transfer coding", error);
    }
  }
  void on_chunk_header_impl(uint64_t, string_view, error_code&) override {}
  void on_finish_impl(error_code&) override {}

  void on_header_impl(error_code& error) override {
    if (status / 100 == 1 && status != kSwitchingProtocols) return;
    if (!Counts(status)) return Refuse("the status", error);
    if (status == kNoContent) {
      length = 0;
    } else if (content_length()) {
      if (*content_length() > static_cast<uint64_t>(rules->maxBody)) return Refuse("too long a body", error);
      length = static_cast<int64_t>(*content_length());
    } else if (need_eof() && !rules->endMayBeTold) {
      return Refuse("a body without a length", error);
    }
    counts = true;
  }
  void on_body_init_impl(const boost::optional<uint64_t>&, error_code&) override {}
  size_t on_body_impl(string_view body, error_code& error) override {
    TakeBody(body, error);
    return body.size();
  }
  size_t on_chunk_body_impl(uint64_t, string_view body, error_code& error) override {
    TakeBody(body, error);
    return body.size();
  }

  void TakeBody(string_view body, error_code& error) {
    if (!counts || body.empty()) return;
    if (static_cast<int64_t>(body.size()) > rules->maxBody - received_) {
      return Refuse("too long a body", error);
    }
    received_ += static_cast<int64_t>(body.size());
    Give(body.data(), body.size(), length.value_or(0));
  }
  void Give(const char* chunk, size_t size, int64_t contentLength) {
    sink_(zq_HttpResponse{contentLength, received_, chunk, size, status});
  }
  void Refuse(const char* why, error_code& error) {
    refusal = why;
    error = http::error::body_limit;  // any: it ends the parsing
  }

  ResponseReader::Sink& sink_;
  int64_t received_ = 0;
};

}  // namespace

class ResponseReader::Impl {
 public:
  Impl(const ResponseRules& rules, Sink sink) : rules_(rules), sink_(std::move(sink)) { Restart(); }

  State Feed(const char* bytes, size_t size) {
    if (state_ != State::kMore) return state_;
    if (pending_.empty()) {
      const size_t used = Parse(bytes, size);
      pending_.assign(bytes + used, size - used);
    } else {
      pending_.append(bytes, size);
      pending_.erase(0, Parse(pending_.data(), pending_.size()));
    }
    // A chunk's line, or the fields after the last one.
    if (state_ == State::kMore && pending_.size() > kMaxHeader) Fail("too long a line");
    return state_;
  }

  State End() {
    if (state_ != State::kMore) return state_;
    if (!parser_->got_some()) return Fail("no answer");
    error_code error;
    parser_->put_eof(error);
    if (!error && parser_->counts) return Complete();
    return Fail("the answer is cut");
  }

  const std::string& Why() const { return why_; }

 private:
  void Restart() {
    parser_.emplace(sink_);
    parser_->rules = &rules_;
  }

  // Returns the bytes that are done with.
  size_t Parse(const char* bytes, size_t size) {
    size_t used = 0;
    while (state_ == State::kMore && used < size) {
      error_code error;
      const bool inHeader = !parser_->is_header_done();
      const size_t taken = parser_->put(boost::asio::buffer(bytes + used, size - used), error);
      used += taken;
      // The library's limit is for what it gets at a time, and starts again with each field.
      if (inHeader && !parser_->is_header_done()) headerBytes_ += taken;
      if (headerBytes_ > kMaxHeader) error = http::error::header_limit;
      if (error == http::error::need_more) break;
      if (error) {
        Fail(parser_->refusal != nullptr ? parser_->refusal : error.message());
      } else if (parser_->is_done()) {
        EndMessage();
      }
    }
    return used;
  }

  void EndMessage() {
    if (parser_->counts) {
      Complete();
    } else if (++interim_ > kMaxInterim) {
      Fail("too many interim answers");
    } else {
      Restart();
    }
  }

  State Complete() {
    state_ = State::kWhole;
    parser_->Finish();
    return state_;
  }
  State Fail(const std::string& why) {
    why_ = why + (parser_->status != 0 ? ", status " + std::to_string(parser_->status) : "");
    return state_ = State::kBad;
  }

  const ResponseRules rules_;
  Sink sink_;
  std::optional<Parser> parser_;
  std::string pending_;  // what the parser wants to see again, with more
  int interim_ = 0;
  size_t headerBytes_ = 0;  // of all messages
  State state_ = State::kMore;
  std::string why_;
};

ResponseReader::ResponseReader(const ResponseRules& rules, Sink sink)
    : impl_(std::make_unique<Impl>(rules, std::move(sink))) {}

ResponseReader::~ResponseReader() = default;

ResponseReader::State ResponseReader::Feed(const char* bytes, size_t size) {
  return impl_->Feed(bytes, size);
}

ResponseReader::State ResponseReader::End() {
  return impl_->End();
}

const std::string& ResponseReader::Why() const {
  return impl_->Why();
}
