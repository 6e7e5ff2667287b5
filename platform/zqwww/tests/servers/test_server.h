// A server on this machine that says, byte for byte, what a test tells it to say.
#ifndef ZQWWW_TEST_SERVER_H
#define ZQWWW_TEST_SERVER_H

#include <openssl/ssl.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "certificates.h"
#include "loopback_listener.h"

// The server's end of one connection, plain or TLS. Its functions answer whether the client is still there.
class Conversation {
 public:
  Conversation(int socket, SSL* tls) : socket_(socket), tls_(tls) {}

  // The next request with its body (by Content-Length); "" when the client is gone.
  std::string ReadRequest();
  bool Write(const std::string& bytes);
  // Returns when the client has closed.
  void AwaitEnd();
  // Ends the connection now; over TLS without a farewell, so that the client sees a cut.
  void Cut();
  // The same with a reset.
  void ResetNow();

 private:
  friend class TestServer;
  int Read(char* buffer, int size);

  int socket_;  // -1 when it is gone
  SSL* tls_;
};

struct ServerSetting {
  const Identity* identity = nullptr;  // TLS
  bool tunnel = false;                 // is first told CONNECT, as a proxy in front of itself
  int newestTls = 0;                   // TLS1_1_VERSION...; 0: any
  bool wantsHttp2 = false;             // chooses h2 from what the client offers by ALPN, when it is there
};

// Serves one connection after the other on a thread of its own.
class TestServer {
 public:
  using Play = std::function<void(Conversation&)>;

  TestServer(Play play, const ServerSetting& setting = {});
  // Reads a request, says `answer` and closes.
  explicit TestServer(const std::string& answer, const ServerSetting& setting = {});
  TestServer(const TestServer&) = delete;
  TestServer& operator=(const TestServer&) = delete;
  ~TestServer();

  int Port() const { return listener_.Port(); }
  // The requests so far, CONNECT too.
  std::vector<std::string> Requests();
  int Connections() const { return connections_; }

 private:
  void Serve();
  void Speak(int socket);
  void SpeakTls(int socket);
  void Note(const std::string& request);

  const Play play_;
  const ServerSetting setting_;
  LoopbackListener listener_;
  std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context_;
  std::mutex mutex_;
  std::vector<std::string> requests_;
  int current_ = -1;  // the socket that is spoken on
  std::atomic<bool> over_{false};
  std::atomic<int> connections_{0};
  std::thread thread_;

  friend class Conversation;
  static thread_local TestServer* serving_;
};

#endif
