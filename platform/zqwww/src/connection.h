// A connection to a server, plain or TLS, direct or by a proxy.
#ifndef ZQWWW_CONNECTION_H
#define ZQWWW_CONNECTION_H

#include <curl/curl.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "cancellation.h"
#include "libraries.h"
#include "proxy_rule.h"
#include "trust.h"
#include "url_parts.h"

struct Limits {
  std::chrono::milliseconds connect{30000};  // until the connection stands, TLS and a tunnel included
  std::chrono::milliseconds idle{60000};     // without a byte moving
  std::chrono::milliseconds exchange{0};     // from standing to the end; 0: none
};

// One thread at a time; another may request the cancellation, which makes what is under way fail at once.
// Every failure but a cancellation is traced.
class Connection {
 public:
  // The most that one Receive gives, in bytes, unless asked otherwise.
  static constexpr size_t kPiece = 16384;

  // `cancellation` outlives this; null: none. `piece`: 1024 to 512 KiB.
  Connection(const Limits& limits, const Cancellation* cancellation, size_t piece = kPiece);
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection();

  // Once. Over TLS, true only when the server proved to be the one that is named.
  bool Open(const UrlParts& server, const Route& route, const Trust& trust);
  bool Send(const char* bytes, size_t size);
  size_t Piece() const { return piece_; }
  // Waits for bytes and takes what has come, at most `size` and a piece; 0 when the server closed, -1 on failure. Over TLS
  // a connection that ends without the server's farewell failed: somebody else may have cut it.
  ssize_t Receive(char* buffer, size_t size);

 private:
  using Clock = std::chrono::steady_clock;
  struct EasyCloser {
    void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
  };
  struct MultiCloser {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
  };

  bool Prepare(const UrlParts& server, const Route& route);
  static CURLcode TlsContextReady(CURL* easy, void* tlsContext, void* self);
  // None while it is under way.
  std::optional<CURLcode> ConnectResult();
  bool WaitToConnect(Clock::time_point deadline);
  bool WaitForSocket(short events);
  bool Farewell();
  bool Cancelled() const { return cancellation_ != nullptr && cancellation_->Requested(); }
  bool Fail(const char* why);

  const LibrariesHold libraries_;
  const Limits limits_;
  const Cancellation* const cancellation_;
  const size_t piece_;
  Trust trust_;
  std::string name_;  // for traces
  bool tls_ = false;
  char error_[CURL_ERROR_SIZE] = {};
  // The connection belongs to the multi handle, which therefore goes last.
  std::unique_ptr<CURLM, MultiCloser> multi_;
  std::unique_ptr<CURL, EasyCloser> easy_;
  curl_socket_t socket_ = CURL_SOCKET_BAD;
  Clock::time_point exchangeEnd_ = Clock::time_point::max();
};

#endif
