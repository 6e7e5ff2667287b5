#include "environment.h"

#include <cstdlib>

namespace {

std::string Variable(const char* name) {
  const char* value = getenv(name);
  return value != nullptr ? value : "";
}

}  // namespace

ProxySettings ReadProxySettings() {
  return {Variable("http_proxy"), Variable("no_proxy")};
}
