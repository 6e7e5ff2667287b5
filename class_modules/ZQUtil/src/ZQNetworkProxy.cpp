// The proxy: two keys, and the environment variable that programs and libraries of the process go by.
#include <strings.h>

#include <cstdlib>
#include <string>

#include "KeyStore.h"
#include "ZQNetwork.h"
#include "ZQUtilTrace.h"

namespace {

constexpr char kVariable[] = "http_proxy";
constexpr char kHttpPrefix[] = "http://";
constexpr size_t kHttpPrefixLength = sizeof kHttpPrefix - 1;

// The variable's value for a proxy that is not "".
std::string ProxyAddress(std::string proxy) {
  // The bare prefix is no address: it gets the prefix like any other text.
  if (proxy.size() <= kHttpPrefixLength || proxy.compare(0, kHttpPrefixLength, kHttpPrefix) != 0) {
    proxy.insert(0, kHttpPrefix);
  }
  return proxy;
}

}  // namespace

void ZQNetwork::setProxyEnabled(bool enabled) {
  {
    KeyStore store;
    if (!store.Ok()) return;
    store.Write("net.proxyen", enabled ? "TRUE" : "FALSE");
  }
  ConditionallyEnableProxy();
}

void ZQNetwork::setProxy(char* proxy) {
  StripCarriageReturn(proxy);
  {
    KeyStore store;
    if (!store.Ok()) return;
    store.Write("net.proxy", proxy);
  }
  ConditionallyEnableProxy();
}

// A variable that is new to the environment moves all of it, and one that goes moves those behind it, while other threads
// may be looking for theirs. As the last one, with its place already there, it comes and goes without that.
void ZQNetwork::MakeRoomForProxy() {
  const char* const held = getenv(kVariable);
  const std::string value = held != nullptr ? held : "";
  unsetenv(kVariable);
  setenv(kVariable, value.c_str(), 1);
  if (held == nullptr) unsetenv(kVariable);
}

void ZQNetwork::ConditionallyEnableProxy() {
  const KeyStore store;
  if (!store.Ok()) return;
  const KeyStoreValue proxy = store.Read("net.proxy");
  const KeyStoreValue enabled = store.Read("net.proxyen");
  if (proxy.text[0] != '\0' && strcasecmp(enabled.text, "TRUE") == 0) {
    const std::string address = ProxyAddress(proxy.text);
    ZQUTIL_TRACE("ZQUtil Setting an http proxy %s\n", address.c_str());
    setenv(kVariable, address.c_str(), 1);
  } else {
    ZQUTIL_TRACE("ZQUtil removing http proxy info\n");
    unsetenv(kVariable);
  }
}
