#include "environment.h"
#include "zq_url_parts.h"

zq_URL::zq_URL(const char* text) {
  const std::optional<UrlParts> url = text != nullptr ? ParseUrl(text) : std::nullopt;
  if (!url) return;
  const Route route = RouteTo(*url, ReadProxySettings());
  parts_ = std::make_unique<Parts>(
      Parts{*url, route, route.NamesWholeUrl(*url) ? AbsoluteForm(*url) : url->target});
}

zq_URL::zq_URL(const zq_URL& other)
    : parts_(other.parts_ ? std::make_unique<Parts>(*other.parts_) : nullptr) {}

zq_URL::~zq_URL() = default;

bool zq_URL::valid() const {
  return parts_ != nullptr;
}

const char* zq_URL::scheme() const {
  if (!parts_) return "";
  return parts_->url.tls ? "https" : "http";
}

const char* zq_URL::host() const {
  return parts_ ? parts_->url.host.c_str() : "";
}

int zq_URL::port() const {
  return parts_ ? parts_->url.port : 0;
}

const char* zq_URL::hostText() const {
  return parts_ ? parts_->url.hostText.c_str() : "";
}

const char* zq_URL::requestTarget() const {
  return parts_ ? parts_->requestTarget.c_str() : "";
}
