// What the key store says the device's network is to be.
#include <strings.h>

#include <cstring>
#include <memory>

#include "KeyStore.h"
#include "OwnedText.h"
#include "ZQNetwork.h"
#include "ZQUtilTrace.h"
#include "number_text.h"
#include "zq_memory.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQNetwork";
constexpr char kWireless[] = "ra0";
constexpr char kWired[] = "eth0";
constexpr size_t kWep40Digits = 10;
constexpr size_t kWep104Digits = 26;

// A new string of the value, or of `fallback` when the key is missing or empty; null when the store cannot be opened.
char* StoredText(const char* key, const char* fallback) {
  KeyStoreValue value;
  if (!ReadKeyStore(key, value)) return nullptr;
  return zq__newString(value.text[0] != '\0' ? value.text : fallback, kSourceTag, __LINE__);
}

// Whether the key's value is this word, in any case.
bool Says(const char* key, const char* word) {
  KeyStoreValue value;
  return ReadKeyStore(key, value) && strcasecmp(value.text, word) == 0;
}

// The kind of a key, told by its length: hexadecimal digits of WEP keys have one of two lengths.
const char* KindOf(const char* key) {
  if (key == nullptr || *key == '\0') return "NOKEY";
  const size_t length = std::strlen(key);
  if (length == kWep40Digits) return "WEP40";
  return length == kWep104Digits ? "WEP104" : "WPA";
}

}  // namespace

const char* ZQNetwork::GetWirelessInterface() {
  ZQUTIL_TRACE("Wireless interface on intel is ra0\n");
  return kWireless;
}

const char* ZQNetwork::GetCurrentInterface() {
  return isWireless() ? kWireless : kWired;
}

bool ZQNetwork::isProxyEnabled() {
  return Says("net.proxyen", "true");
}

bool ZQNetwork::isDHCPEnabled() {
  KeyStoreValue value;
  return ReadKeyStore("net.dhcp", value) && strcasecmp(value.text, "no") != 0;
}

bool ZQNetwork::isWireless() {
  return Says("net.wifi", "yes");
}

int32_t ZQNetwork::getIndex() {
  KeyStoreValue value;
  ReadKeyStore("net.index", value);
  return DecimalNumber(value.text);
}

char* ZQNetwork::getKey() {
  ZQUTIL_TRACE("ZQUtil call to getKey\n");
  char* const key = StoredText("net.key", "");
  if (key != nullptr) ZQUTIL_TRACE("ZQUtil getKey returning %s\n", key);
  return key;
}

char* ZQNetwork::getKeyType() {
  ZQUTIL_TRACE("ZQUtil call to getKeyType\n");
  const char* const kind = KindOf(OwnedText(getKey()).get());
  ZQUTIL_TRACE("ZQUtil getKeyType returning %s\n", kind);
  return zq__newString(kind, kSourceTag, __LINE__);
}

char* ZQNetwork::getEncryption() {
  ZQUTIL_TRACE("ZQUtil call to getEncryption\n");
  char* const encryption = StoredText("net.enctype", "DISABLED");
  if (encryption != nullptr) ZQUTIL_TRACE("ZQUtil getEncryption returning %s\n", encryption);
  return encryption;
}

char* ZQNetwork::getNetAuth() {
  ZQUTIL_TRACE("ZQUtil call to getNetAuth\n");
  char* const authentication = StoredText("net.authtype", "OPEN");
  if (authentication != nullptr) ZQUTIL_TRACE("ZQUtil getNetAuth returning %s\n", authentication);
  return authentication;
}

char* ZQNetwork::getConfiguredESSID() {
  return StoredText("net.essid", "");
}

char* ZQNetwork::getProxy() {
  return StoredText("net.proxy", "");
}
