// Which way a connection goes, over plain values.
#ifndef ZQWWW_PROXY_RULE_H
#define ZQWWW_PROXY_RULE_H

#include <string>

#include "url_parts.h"

// The environment's words on proxies; "" what is not set.
struct ProxySettings {
  std::string httpProxy;
  std::string noProxy;
};

struct Route {
  enum class Way {
    kDirect,
    kProxy,
    kNone  // a proxy is set whose host cannot be read
  };
  Way way = Way::kDirect;
  std::string proxyHost = {};
  int proxyPort = 0;

  // The proxy forwards the request itself, so it must name the whole URL; https is tunnelled.
  bool NamesWholeUrl(const UrlParts& server) const { return way == Way::kProxy && !server.tls; }
};

// See zqwww.h for the rules of both variables.
Route RouteTo(const UrlParts& server, const ProxySettings& settings);

#endif
