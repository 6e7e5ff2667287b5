// A URL taken apart, over plain values.
#ifndef ZQWWW_URL_PARTS_H
#define ZQWWW_URL_PARTS_H

#include <optional>
#include <string>

struct UrlParts {
  bool tls = false;      // https, else http
  std::string host;      // an IPv6 address in its brackets
  int port = 0;          // 1 to 65535
  std::string hostText;  // with the port when it is not the scheme's own
  std::string target;    // path and query, at least "/"; neither blanks nor bytes beyond ASCII
};

// None for anything but an absolute http or https URL of at most 4096 bytes without user and password.
std::optional<UrlParts> ParseUrl(const std::string& text);
// The parts of a server that is known by name and port; none when that is no host or no port.
std::optional<UrlParts> ServerParts(bool tls, const std::string& host, int port);
// The whole URL, as a proxy that does not tunnel wants it in the request line.
std::string AbsoluteForm(const UrlParts& parts);

#endif
