// Any text as a URL, with a second line as the proxy and a third as its exceptions; what is taken is sound.
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "proxy_rule.h"
#include "url_parts.h"

namespace {

void Require(bool held) {
  if (!held) abort();
}

// Nothing that could end a line or a word of a request.
bool IsWord(const std::string& text) {
  for (const char byte : text) {
    if (byte <= ' ' || byte >= 0x7f) return false;
  }
  return !text.empty();
}

void RequireSound(const UrlParts& parts) {
  Require(IsWord(parts.host) && IsWord(parts.hostText) && IsWord(parts.target));
  Require(parts.target.front() == '/');
  Require(parts.host.find_first_of("/?#@") == std::string::npos);
  Require(parts.port >= 1 && parts.port <= 65535);
  const std::string whole = AbsoluteForm(parts);
  if (whole.size() > 4096) return;
  const std::optional<UrlParts> again = ParseUrl(whole);
  Require(again && again->host == parts.host && again->port == parts.port && again->tls == parts.tls);
  Require(again->target == parts.target);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
  std::string url;
  ProxySettings settings;
  std::getline(lines, url);
  std::getline(lines, settings.httpProxy);
  std::getline(lines, settings.noProxy);
  const std::optional<UrlParts> parts = ParseUrl(url);
  if (!parts) return 0;
  RequireSound(*parts);
  const Route route = RouteTo(*parts, settings);
  Require((route.way == Route::Way::kProxy) == !route.proxyHost.empty());
  Require((route.way == Route::Way::kProxy) == (route.proxyPort != 0));
  if (route.way == Route::Way::kProxy) Require(IsWord(route.proxyHost));
  return 0;
}
