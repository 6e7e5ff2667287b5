#include "proxy_rule.h"

#include <strings.h>

#include <string_view>

namespace {

constexpr std::string_view kScheme = "http://";

std::string_view WithoutBrackets(std::string_view host) {
  if (host.size() > 2 && host.front() == '[' && host.back() == ']') return host.substr(1, host.size() - 2);
  return host;
}

bool SameText(std::string_view a, std::string_view b) {
  return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

// `entry` names the host itself or a domain that it is in.
bool Covers(std::string_view entry, std::string_view host) {
  if (entry == "*") return true;
  if (entry.starts_with('.')) entry.remove_prefix(1);
  entry = WithoutBrackets(entry);
  if (entry.empty() || entry.size() > host.size()) return false;
  const std::string_view end = host.substr(host.size() - entry.size());
  if (!SameText(end, entry)) return false;
  return end.size() == host.size() || host[host.size() - end.size() - 1] == '.';
}

bool GoesDirectly(std::string_view host, std::string_view list) {
  constexpr std::string_view kBetween = ", \t";
  host = WithoutBrackets(host);
  while (!list.empty()) {
    const size_t end = list.find_first_of(kBetween);
    if (Covers(list.substr(0, end), host)) return true;
    list.remove_prefix(end == list.npos ? list.size() : end + 1);
  }
  return false;
}

// Port 0, which no URL may name, is asked for here: it stands for the server's own.
std::string WithoutPortZero(std::string text) {
  const size_t end = text.find('/');
  const std::string server = text.substr(0, end);
  const size_t colon = server.rfind(':');
  if (colon == server.npos || server.find(']', colon) != server.npos) return text;
  if (server.find_first_not_of('0', colon + 1) != server.npos) return text;
  return server.substr(0, colon) + (end == text.npos ? "" : text.substr(end));
}

bool NamesPort(const std::string& text) {
  const std::string server = text.substr(0, text.find('/'));
  const size_t colon = server.rfind(':');
  return colon != server.npos && server.find(']', colon) == server.npos;
}

}  // namespace

Route RouteTo(const UrlParts& server, const ProxySettings& settings) {
  const size_t scheme = settings.httpProxy.find(kScheme);
  if (settings.httpProxy.size() <= kScheme.size() || scheme == settings.httpProxy.npos) return {};
  if (GoesDirectly(server.host, settings.noProxy)) return {};
  const std::string rest = WithoutPortZero(settings.httpProxy.substr(scheme + kScheme.size()));
  const std::optional<UrlParts> proxy = ParseUrl(std::string(kScheme) + rest);
  if (!proxy) return {Route::Way::kNone};
  return {Route::Way::kProxy, proxy->host, NamesPort(rest) ? proxy->port : server.port};
}
