#include "connection.h"

#include <openssl/ssl.h>
#include <poll.h>

#include <algorithm>
#include <cerrno>

#include "transport_library.h"
#include "www_trace.h"

namespace {

// How long a wait may be without a look at what has no descriptor.
constexpr std::chrono::milliseconds kLook{1000};

int MillisecondsUntil(std::chrono::steady_clock::time_point deadline) {
  using std::chrono::milliseconds;
  const auto left = std::chrono::ceil<milliseconds>(deadline - std::chrono::steady_clock::now());
  return static_cast<int>(std::clamp(left, milliseconds(0), kLook).count());
}

}  // namespace

Connection::Connection(const Limits& limits, const Cancellation* cancellation, size_t piece)
    : limits_(limits), cancellation_(cancellation), piece_(piece) {}

Connection::~Connection() {
  if (multi_ && easy_) curl_multi_remove_handle(multi_.get(), easy_.get());
}

bool Connection::Open(const UrlParts& server, const Route& route, const Trust& trust) {
  name_ = server.host + ":" + std::to_string(server.port);
  trust_ = trust;
  tls_ = server.tls;
  if (!libraries_.Held()) return Fail("the transport library is not ready");
  if (route.way == Route::Way::kNone) return Fail("http_proxy names no proxy");
  if (!Prepare(server, route)) return Fail("no memory");
  const Clock::time_point deadline = Clock::now() + limits_.connect;
  std::optional<CURLcode> result;
  while (!(result = ConnectResult())) {
    if (!WaitToConnect(deadline)) return false;
  }
  if (*result != CURLE_OK) return Fail(*error_ != '\0' ? error_ : curl_easy_strerror(*result));
  if (GetCurlInfo(easy_.get(), CURLINFO_ACTIVESOCKET, &socket_) != CURLE_OK) return Fail("no socket");
  if (limits_.exchange.count() > 0) exchangeEnd_ = Clock::now() + limits_.exchange;
  return true;
}

bool Connection::Prepare(const UrlParts& server, const Route& route) {
  multi_.reset(curl_multi_init());
  easy_.reset(curl_easy_init());
  if (!multi_ || !easy_) return false;
  CURL* easy = easy_.get();
  const std::string url = (server.tls ? "https://" : "http://") + name_ + "/";
  const std::string proxy = route.way == Route::Way::kProxy
                                ? "http://" + route.proxyHost + ":" + std::to_string(route.proxyPort)
                                : "";
  SetCurlOption(easy, CURLOPT_NOSIGNAL, 1L);
  SetCurlOption(easy, CURLOPT_ERRORBUFFER, error_);
  SetCurlOption(easy, CURLOPT_CONNECT_ONLY, 1L);
  // Also the most that curl_easy_recv reads.
  SetCurlOption(easy, CURLOPT_BUFFERSIZE, static_cast<long>(piece_));
  // Never HTTP/2: curl_easy_recv of 7.88 crashes when a server chose it.
  SetCurlOption(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  SetCurlOption(easy, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limits_.connect.count()));
  // A name that is being looked up does not hold the end up.
  SetCurlOption(easy, CURLOPT_QUICK_EXIT, 1L);
  // "" keeps the library from looking into the environment itself.
  SetCurlOption(easy, CURLOPT_NOPROXY, "");
  SetCurlOption(easy, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  SetCurlOption(easy, CURLOPT_SSL_VERIFYPEER, 1L);
  SetCurlOption(easy, CURLOPT_SSL_VERIFYHOST, 2L);
  SetCurlOption(easy, CURLOPT_CAINFO, nullptr);
  SetCurlOption(easy, CURLOPT_CAPATH, nullptr);
  SetCurlOption(easy, CURLOPT_SSL_CTX_FUNCTION, &Connection::TlsContextReady);
  SetCurlOption(easy, CURLOPT_SSL_CTX_DATA, this);
  return SetCurlOption(easy, CURLOPT_URL, url.c_str()) == CURLE_OK &&
         SetCurlOption(easy, CURLOPT_PROXY, proxy.c_str()) == CURLE_OK &&
         curl_multi_add_handle(multi_.get(), easy) == CURLM_OK;
}

CURLcode Connection::TlsContextReady(CURL* /*easy*/, void* tlsContext, void* self) {
  ApplyTrust(static_cast<Connection*>(self)->trust_, tlsContext);
  return CURLE_OK;
}

std::optional<CURLcode> Connection::ConnectResult() {
  int running = 0;
  if (curl_multi_perform(multi_.get(), &running) != CURLM_OK) return CURLE_FAILED_INIT;
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
    if (message->msg == CURLMSG_DONE) return message->data.result;
  }
  return std::nullopt;
}

bool Connection::WaitToConnect(Clock::time_point deadline) {
  if (Cancelled()) return false;
  const int timeout = MillisecondsUntil(deadline);
  if (timeout == 0) return Fail("no connection in time");
  curl_waitfd cancel{cancellation_ != nullptr ? cancellation_->Descriptor() : -1, CURL_WAIT_POLLIN, 0};
  const unsigned int others = cancel.fd >= 0 ? 1 : 0;
  return curl_multi_poll(multi_.get(), &cancel, others, timeout, nullptr) == CURLM_OK || Fail("no memory");
}

bool Connection::Send(const char* bytes, size_t size) {
  while (size > 0) {
    size_t sent = 0;
    const CURLcode result = curl_easy_send(easy_.get(), bytes, size, &sent);
    if (result == CURLE_AGAIN) {
      if (!WaitForSocket(POLLOUT)) return false;
      continue;
    }
    if (result != CURLE_OK) return Fail("the request cannot be sent");
    bytes += sent;
    size -= sent;
  }
  return true;
}

ssize_t Connection::Receive(char* buffer, size_t size) {
  for (;;) {
    if (Cancelled()) return -1;
    // What TLS has already deciphered is nothing to poll for: only an empty-handed call is followed by a wait.
    size_t received = 0;
    const CURLcode result = curl_easy_recv(easy_.get(), buffer, size, &received);
    if (result == CURLE_OK && received == 0 && tls_ && !Farewell()) {
      Fail("the connection was cut");
      return -1;
    }
    if (result == CURLE_OK) return static_cast<ssize_t>(received);
    if (result != CURLE_AGAIN) {
      Fail("the connection broke");
      return -1;
    }
    if (!WaitForSocket(POLLIN)) return -1;
  }
}

// The transport library tells no cut from an end.
bool Connection::Farewell() {
  const curl_tlssessioninfo* session = nullptr;
  if (GetCurlInfo(easy_.get(), CURLINFO_TLS_SSL_PTR, &session) != CURLE_OK) return false;
  if (session == nullptr || session->internals == nullptr) return false;
  return (SSL_get_shutdown(static_cast<const SSL*>(session->internals)) & SSL_RECEIVED_SHUTDOWN) != 0;
}

bool Connection::WaitForSocket(short events) {
  const Clock::time_point deadline = std::min(Clock::now() + limits_.idle, exchangeEnd_);
  while (!Cancelled()) {
    const int timeout = MillisecondsUntil(deadline);
    if (timeout == 0) return Fail("the server keeps us waiting");
    pollfd waiting[] = {{socket_, events, 0},
                        {cancellation_ != nullptr ? cancellation_->Descriptor() : -1, POLLIN, 0}};
    const int ready = poll(waiting, std::size(waiting), timeout);
    if (ready < 0 && errno != EINTR) return Fail("no memory");
    if (ready > 0 && waiting[0].revents != 0) return true;
  }
  return false;
}

bool Connection::Fail(const char* why) {
  WwwFailure("%s: %s\n", name_.c_str(), why);
  return false;
}
