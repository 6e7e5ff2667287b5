// A server of HTTP or HTTPS on this machine that says what it is told to, and keeps what it is asked, byte for byte.
#ifndef ZQUTIL_TESTS_HTTP_PEER_H
#define ZQUTIL_TESTS_HTTP_PEER_H

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <thread>

struct ssl_ctx_st;

// One connection, one request, one answer, on a thread of its own.
class HttpPeer {
 public:
  enum Kind { kHttp, kHttps };
  // An HTTPS one proves to be "localhost"; while it lives the certificate of the latest is trusted ($ZQ_CA_FILE).
  // `address`: of this machine, 127.x.y.z.
  explicit HttpPeer(Kind kind, const char* address = "127.0.0.1");
  HttpPeer(const HttpPeer&) = delete;
  HttpPeer& operator=(const HttpPeer&) = delete;
  ~HttpPeer();

  uint16_t Port() const { return port_; }
  // What the next connection without an answer of its own gets, whole; then the connection ends. A connection for which
  // nothing was said is closed without a word.
  void Answer(const std::string& bytes);
  // The same as the body of a "200 OK" of its length.
  void AnswerBody(const std::string& body);
  // The next request that came, awaited; "" for a connection that ended before its request.
  std::string NextRequest();
  // The requests that came and nobody has asked for.
  size_t Waiting();

 private:
  class Connection;
  void Serve();
  std::string TakeAnswer();

  const int socket_;
  uint16_t port_ = 0;
  ssl_ctx_st* tls_ = nullptr;
  std::mutex mutex_;
  std::condition_variable came_;
  std::deque<std::string> answers_;
  std::deque<std::string> requests_;
  std::thread thread_;
};

// "HTTP/1.1 200 OK" with that body and its length.
std::string OkAnswer(const std::string& body);

#endif
