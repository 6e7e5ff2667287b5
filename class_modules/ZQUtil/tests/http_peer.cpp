#include "http_peer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace {

constexpr char kCaFile[] = "/tmp/http-peer-ca.pem";

void Extend(X509* certificate, int id, const char* value) {
  X509V3_CTX context;
  X509V3_set_ctx_nodb(&context);
  X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
  X509_EXTENSION* const extension = X509V3_EXT_conf_nid(nullptr, &context, id, value);
  X509_add_ext(certificate, extension, -1);
  X509_EXTENSION_free(extension);
}

// Of "localhost", signed by itself, good since yesterday.
X509* NewCertificate(EVP_PKEY* key) {
  constexpr long kDay = 86400;
  X509* const certificate = X509_new();
  X509_set_version(certificate, 2);
  ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
  X509_gmtime_adj(X509_getm_notBefore(certificate), -kDay);
  X509_gmtime_adj(X509_getm_notAfter(certificate), 30 * kDay);
  X509_NAME* const name = X509_get_subject_name(certificate);
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("localhost"),
                             -1, -1, 0);
  X509_set_issuer_name(certificate, name);
  X509_set_pubkey(certificate, key);
  Extend(certificate, NID_basic_constraints, "critical,CA:TRUE");
  Extend(certificate, NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1");
  X509_sign(certificate, key, EVP_sha256());
  return certificate;
}

SSL_CTX* NewTls() {
  EVP_PKEY* const key = EVP_EC_gen("P-256");
  X509* const certificate = NewCertificate(key);
  std::FILE* const file = std::fopen(kCaFile, "we");
  if (file == nullptr) throw std::runtime_error("no file for the certificate");
  PEM_write_X509(file, certificate);
  std::fclose(file);
  setenv("ZQ_CA_FILE", kCaFile, 1);
  SSL_CTX* const tls = SSL_CTX_new(TLS_server_method());
  SSL_CTX_use_certificate(tls, certificate);
  SSL_CTX_use_PrivateKey(tls, key);
  X509_free(certificate);
  EVP_PKEY_free(key);
  return tls;
}

size_t ContentLength(const std::string& head) {
  constexpr char kField[] = "\r\nContent-Length: ";
  const size_t place = head.find(kField);
  return place == std::string::npos ? 0 : std::strtoul(head.c_str() + place + sizeof kField - 1, nullptr, 10);
}

}  // namespace

class HttpPeer::Connection {
 public:
  Connection(int socket, SSL_CTX* tls) : socket_(socket), tls_(tls != nullptr ? SSL_new(tls) : nullptr) {
    if (tls_ == nullptr) return;
    SSL_set_fd(tls_, socket_);
    open_ = SSL_accept(tls_) == 1;
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() {
    if (tls_ != nullptr) {
      if (open_) SSL_shutdown(tls_);
      SSL_free(tls_);
    }
    shutdown(socket_, SHUT_WR);
    // What the peer still sends is read, or the system would tell it of a reset.
    char rest[4096];
    while (recv(socket_, rest, sizeof rest, 0) > 0) {
    }
    close(socket_);
  }

  std::string ReadRequest() {
    std::string request;
    while (open_) {
      const size_t end = request.find("\r\n\r\n");
      if (end != std::string::npos && request.size() >= end + 4 + ContentLength(request.substr(0, end + 2)))
        return request;
      char piece[65536];
      const int count = tls_ != nullptr ? SSL_read(tls_, piece, sizeof piece)
                                        : static_cast<int>(recv(socket_, piece, sizeof piece, 0));
      if (count <= 0) return "";
      request.append(piece, static_cast<size_t>(count));
    }
    return "";
  }
  void Write(const std::string& bytes) {
    for (size_t done = 0; open_ && done < bytes.size();) {
      const size_t piece = std::min<size_t>(bytes.size() - done, 65536);
      const int count = tls_ != nullptr
                            ? SSL_write(tls_, bytes.data() + done, static_cast<int>(piece))
                            : static_cast<int>(send(socket_, bytes.data() + done, piece, MSG_NOSIGNAL));
      if (count <= 0) return;
      done += static_cast<size_t>(count);
    }
  }

 private:
  const int socket_;
  SSL* const tls_;
  bool open_ = true;
};

HttpPeer::HttpPeer(Kind kind, const char* at) : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  std::signal(SIGPIPE, SIG_IGN);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  inet_pton(AF_INET, at, &address.sin_addr);
  socklen_t length = sizeof address;
  if (bind(socket_, reinterpret_cast<sockaddr*>(&address), length) != 0 || listen(socket_, 16) != 0 ||
      getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &length) != 0)
    throw std::runtime_error("no port for a server");
  port_ = ntohs(address.sin_port);
  if (kind == kHttps) tls_ = NewTls();
  thread_ = std::thread([this] { Serve(); });
}

HttpPeer::~HttpPeer() {
  shutdown(socket_, SHUT_RDWR);  // ends the accept
  thread_.join();
  close(socket_);
  if (tls_ == nullptr) return;
  SSL_CTX_free(tls_);
  unsetenv("ZQ_CA_FILE");
  unlink(kCaFile);
}

void HttpPeer::Serve() {
  for (;;) {
    const int socket = accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC);
    if (socket < 0) return;
    Connection connection(socket, tls_);
    std::string request = connection.ReadRequest();
    const std::string answer = request.empty() ? "" : TakeAnswer();
    {
      const std::lock_guard lock(mutex_);
      requests_.push_back(std::move(request));
    }
    came_.notify_all();
    connection.Write(answer);
  }
}

std::string HttpPeer::TakeAnswer() {
  const std::lock_guard lock(mutex_);
  if (answers_.empty()) return "";
  std::string answer = std::move(answers_.front());
  answers_.pop_front();
  return answer;
}

void HttpPeer::Answer(const std::string& bytes) {
  const std::lock_guard lock(mutex_);
  answers_.push_back(bytes);
}

void HttpPeer::AnswerBody(const std::string& body) {
  Answer(OkAnswer(body));
}

std::string HttpPeer::NextRequest() {
  std::unique_lock lock(mutex_);
  if (!came_.wait_for(lock, std::chrono::seconds(60), [this] { return !requests_.empty(); })) {
    throw std::runtime_error("no request came");
  }
  std::string request = std::move(requests_.front());
  requests_.pop_front();
  return request;
}

size_t HttpPeer::Waiting() {
  const std::lock_guard lock(mutex_);
  return requests_.size();
}

std::string OkAnswer(const std::string& body) {
  return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}
