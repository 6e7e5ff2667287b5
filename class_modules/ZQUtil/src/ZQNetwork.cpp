#include "ZQNetwork.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include "KeyStore.h"
#include "ZQUtilTrace.h"
#include "number_text.h"
#include "nvram.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQNetwork";
constexpr char kHttpPrefix[] = "http://";
constexpr size_t kHttpPrefixLength = sizeof kHttpPrefix - 1;
constexpr int32_t kLastOrdinaryHardware = 8046;
constexpr int32_t kHardwareVardo2 = 2;

}  // namespace

ZQNetwork::ZQNetwork(bool /*live*/) : essidList(new zq_List("ESSID List", kSourceTag, __LINE__)) {
  ConditionallyEnableProxy();
  ZQUTIL_TRACE("ZQUtil checking for hardware type\n");
  KeyStoreValue type;
  if (!ReadKeyStore("hwinfo.type", type)) {
    ZQUTIL_TRACE("ZQUtil could not open nvram\n");
    return;
  }
  const int32_t number = DecimalNumber(type.text);
  ZQUTIL_TRACE("ZQUtil harware type is %d\n", number);
  if (number > kLastOrdinaryHardware) {
    ZQUTIL_TRACE("This is a Vardo2\n");
    hardwareType = kHardwareVardo2;
  }
}

ZQNetwork::~ZQNetwork() {
  delete essidList;
}

zq_List* ZQNetwork::getESSIDList(bool /*active*/, bool /*cachedOnly*/, const char* /*essid*/,
                                 bool /*ignored*/) {
  return essidList;
}

void ZQNetwork::ConditionallyEnableProxy() {
  const int store = nvram_open(0, 0);
  if (store == -1) return;
  KeyStoreValue proxy;
  KeyStoreValue enabled;
  nvram_read_key(store, nullptr, "net.proxy", proxy.text, sizeof proxy.text);
  nvram_read_key(store, nullptr, "net.proxyen", enabled.text, sizeof enabled.text);
  if (proxy.text[0] != '\0' && strcasecmp(enabled.text, "TRUE") == 0) {
    std::string address = proxy.text;
    // The bare prefix is no address: it gets the prefix like any other text.
    if (address.size() <= kHttpPrefixLength || address.compare(0, kHttpPrefixLength, kHttpPrefix) != 0) {
      address.insert(0, kHttpPrefix);
    }
    ZQUTIL_TRACE("ZQUtil Setting an http proxy %s\n", address.c_str());
    setenv("http_proxy", address.c_str(), 1);
  } else {
    ZQUTIL_TRACE("ZQUtil removing http proxy info\n");
    unsetenv("http_proxy");
  }
  nvram_close(store);
}
