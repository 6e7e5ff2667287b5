#include "test_server.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <utility>

thread_local TestServer* TestServer::serving_ = nullptr;

namespace {

// Of the client's list: one length byte before each name.
int ChooseHttp2(SSL*, const unsigned char** out, unsigned char* outSize, const unsigned char* in,
                unsigned int size, void*) {
  static const unsigned char kWanted[] = "\x02h2\x08http/1.1";
  unsigned char* chosen = nullptr;
  const int found = SSL_select_next_proto(&chosen, outSize, kWanted, sizeof kWanted - 1, in, size);
  *out = chosen;
  return found == OPENSSL_NPN_NEGOTIATED ? SSL_TLSEXT_ERR_OK : SSL_TLSEXT_ERR_NOACK;
}

SSL_CTX* MakeContext(const ServerSetting& setting) {
  if (setting.identity == nullptr) return nullptr;
  SSL_CTX* context = SSL_CTX_new(TLS_server_method());
  SSL_CTX_use_certificate(context, setting.identity->certificate.get());
  SSL_CTX_use_PrivateKey(context, setting.identity->key.get());
  if (setting.newestTls != 0) {
    SSL_CTX_set_min_proto_version(context, TLS1_VERSION);
    SSL_CTX_set_max_proto_version(context, setting.newestTls);
    SSL_CTX_set_cipher_list(context, "ALL:@SECLEVEL=0");
  }
  if (setting.wantsHttp2) SSL_CTX_set_alpn_select_cb(context, ChooseHttp2, nullptr);
  return context;
}

void Touch(int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const int one = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  connect(one, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  close(one);
}

size_t BodyLength(const std::string& request) {
  const size_t field = request.find("Content-Length:");
  return field != request.npos ? std::strtoul(request.c_str() + field + 15, nullptr, 10) : 0;
}

}  // namespace

int Conversation::Read(char* buffer, int size) {
  if (socket_ < 0) return 0;
  return tls_ != nullptr ? SSL_read(tls_, buffer, size)
                         : static_cast<int>(recv(socket_, buffer, static_cast<size_t>(size), 0));
}

std::string Conversation::ReadRequest() {
  std::string request;
  size_t wanted = 0;
  char byte = 0;
  // A byte at a time, so that nothing of a handshake that follows is taken.
  while (wanted == 0 || request.size() < wanted) {
    if (Read(&byte, 1) != 1) return "";
    request += byte;
    if (wanted == 0 && request.ends_with("\r\n\r\n")) wanted = request.size() + BodyLength(request);
  }
  TestServer::serving_->Note(request);
  return request;
}

bool Conversation::Write(const std::string& bytes) {
  size_t written = 0;
  while (socket_ >= 0 && written < bytes.size()) {
    const size_t left = bytes.size() - written;
    const ssize_t now = tls_ != nullptr ? SSL_write(tls_, bytes.data() + written, static_cast<int>(left))
                                        : send(socket_, bytes.data() + written, left, MSG_NOSIGNAL);
    if (now <= 0) return false;
    written += static_cast<size_t>(now);
  }
  return socket_ >= 0;
}

void Conversation::AwaitEnd() {
  char buffer[4096];
  while (Read(buffer, sizeof buffer) > 0) {
  }
}

void Conversation::Cut() {
  if (socket_ >= 0) shutdown(socket_, SHUT_RDWR);
  socket_ = -1;
}

void Conversation::ResetNow() {
  const linger now{1, 0};
  if (socket_ >= 0) setsockopt(socket_, SOL_SOCKET, SO_LINGER, &now, sizeof now);
  socket_ = -1;
}

TestServer::TestServer(Play play, const ServerSetting& setting)
    : play_(std::move(play)), setting_(setting), context_(MakeContext(setting), SSL_CTX_free) {
  thread_ = std::thread([this] { Serve(); });
}

TestServer::TestServer(const std::string& answer, const ServerSetting& setting)
    : TestServer(
          [answer](Conversation& client) {
            client.ReadRequest();
            client.Write(answer);
          },
          setting) {}

TestServer::~TestServer() {
  over_ = true;
  {
    const std::lock_guard lock(mutex_);
    if (current_ >= 0) shutdown(current_, SHUT_RDWR);
  }
  Touch(Port());
  thread_.join();
}

void TestServer::Serve() {
  serving_ = this;
  // A TLS write to a client that is gone.
  sigset_t pipe;
  sigemptyset(&pipe);
  sigaddset(&pipe, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
  for (;;) {
    const int socket = listener_.Accept();
    {
      const std::lock_guard lock(mutex_);
      current_ = over_ ? -1 : socket;
    }
    if (!over_) {
      ++connections_;
      Speak(socket);
    }
    const std::lock_guard lock(mutex_);
    current_ = -1;
    close(socket);
    if (over_) return;
  }
}

void TestServer::Speak(int socket) {
  Conversation plain(socket, nullptr);
  if (setting_.tunnel) {
    if (plain.ReadRequest().empty() || !plain.Write("HTTP/1.1 200 Connection established\r\n\r\n")) return;
  }
  if (context_) {
    SpeakTls(socket);
  } else {
    play_(plain);
  }
}

void TestServer::SpeakTls(int socket) {
  const std::unique_ptr<SSL, decltype(&SSL_free)> tls(SSL_new(context_.get()), SSL_free);
  SSL_set_fd(tls.get(), socket);
  if (SSL_accept(tls.get()) != 1) return;
  Conversation client(socket, tls.get());
  play_(client);
  if (client.socket_ >= 0) SSL_shutdown(tls.get());
}

void TestServer::Note(const std::string& request) {
  const std::lock_guard lock(mutex_);
  requests_.push_back(request);
}

std::vector<std::string> TestServer::Requests() {
  const std::lock_guard lock(mutex_);
  return requests_;
}
