#include "url_parts.h"

#include <curl/curl.h>
#include <strings.h>

#include <charconv>
#include <memory>
#include <string_view>

#include "transport_library.h"

namespace {

constexpr size_t kMaxUrl = 4096;
constexpr int kHttpPort = 80;
constexpr int kHttpsPort = 443;

int PortOf(bool tls) {
  return tls ? kHttpsPort : kHttpPort;
}

bool BeginsWith(const std::string& text, std::string_view prefix) {
  return strncasecmp(text.c_str(), prefix.data(), prefix.size()) == 0;
}

// "https" or "http" and two slashes, no more and no fewer: the library is generous there.
std::optional<bool> TlsByScheme(const std::string& text) {
  constexpr std::string_view kHttp = "http://";
  constexpr std::string_view kHttps = "https://";
  const bool tls = BeginsWith(text, kHttps);
  if (!tls && !BeginsWith(text, kHttp)) return std::nullopt;
  const size_t after = tls ? kHttps.size() : kHttp.size();
  if (text.size() == after || text[after] == '/') return std::nullopt;
  return tls;
}

class Url {
 public:
  Url() : handle_(LoadTransport() ? curl_url() : nullptr) {}

  bool Set(const std::string& text) {
    constexpr unsigned int kFlags = CURLU_DISALLOW_USER | CURLU_URLENCODE | CURLU_ALLOW_SPACE;
    return handle_ && curl_url_set(handle_.get(), CURLUPART_URL, text.c_str(), kFlags) == CURLUE_OK;
  }
  // Empty when the URL has no such part.
  std::string Get(CURLUPart part, unsigned int flags = 0) const {
    char* text = nullptr;
    if (curl_url_get(handle_.get(), part, &text, flags) != CURLUE_OK) return "";
    std::string copy = text;
    curl_free(text);
    return copy;
  }

 private:
  struct Closer {
    void operator()(CURLU* url) const { curl_url_cleanup(url); }
  };
  std::unique_ptr<CURLU, Closer> handle_;
};

// The library converts the escapes of a host; what comes out must still be one.
bool IsHost(std::string_view host) {
  if (host.empty()) return false;
  for (const char byte : host) {
    const auto code = static_cast<unsigned char>(byte);
    if (code <= ' ' || code >= 0x7f || std::string_view("/\\?#@<>\"%").find(byte) != std::string_view::npos) {
      return false;
    }
  }
  return true;
}

}  // namespace

std::optional<UrlParts> ParseUrl(const std::string& text) {
  const std::optional<bool> tls = TlsByScheme(text);
  Url url;
  if (!tls || text.size() > kMaxUrl || !url.Set(text)) return std::nullopt;
  UrlParts parts;
  parts.tls = *tls;
  parts.host = url.Get(CURLUPART_HOST);
  const std::string port = url.Get(CURLUPART_PORT, CURLU_DEFAULT_PORT);
  std::from_chars(port.data(), port.data() + port.size(), parts.port);
  if (!IsHost(parts.host) || parts.port < 1) return std::nullopt;
  parts.hostText = parts.port == PortOf(*tls) ? parts.host : parts.host + ":" + std::to_string(parts.port);
  parts.target = url.Get(CURLUPART_PATH);
  const std::string query = url.Get(CURLUPART_QUERY);
  if (!query.empty()) parts.target += "?" + query;
  return parts;
}

std::optional<UrlParts> ServerParts(bool tls, const std::string& host, int port) {
  // Whatever could end the host within a URL.
  if (port < 1 || port > 65535 || host.find_first_of("/\\?#@ ") != host.npos) return std::nullopt;
  const bool bareIpv6 = !host.starts_with('[') && host.find(':') != host.npos;
  const std::string name = bareIpv6 ? "[" + host + "]" : host;
  return ParseUrl((tls ? "https://" : "http://") + name + ":" + std::to_string(port) + "/");
}

std::string AbsoluteForm(const UrlParts& parts) {
  return (parts.tls ? "https://" : "http://") + parts.hostText + parts.target;
}
