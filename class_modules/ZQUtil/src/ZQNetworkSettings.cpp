// The four ways to set the network up. Each writes the whole set of keys, what does not belong to it is erased, and
// restarts the network.
#include <cstdio>
#include <cstring>
#include <initializer_list>

#include "KeyStore.h"
#include "ZQNetwork.h"
#include "ZQUtilTrace.h"
#include "setting_methods.h"

namespace {

struct Addresses {
  const char* ip;
  const char* netmask;
  const char* primaryDns;
  const char* secondaryDns;
  const char* gateway;
};

struct Radio {
  const char* ssid;
  const char* netAuth;
  const char* encryption;
  const char* key;
  int32_t index;  // of a WEP key; 0 or less: none
  const char* wpaType;
};

const char* Shown(const char* text) {
  return text != nullptr ? text : "NULL";
}

const char* ShownInBrackets(const char* text) {
  return text != nullptr ? text : "(NULL)";
}

// The list of name servers; what does not fit its 255 characters is cut.
struct NameServers {
  NameServers(const char* primary, const char* secondary) {
    std::snprintf(text, sizeof text, "%s%s%s", primary != nullptr ? primary : "",
                  secondary != nullptr ? "," : "", secondary != nullptr ? secondary : "");
  }
  char text[256] = {};
};

void Erase(KeyStore& store, std::initializer_list<const char*> keys) {
  for (const char* key : keys) store.Erase(key);
}

void WriteAddresses(KeyStore& store, const Addresses& addresses) {
  store.Write("net.ipaddr", addresses.ip);
  store.Write("net.netmask", addresses.netmask);
  store.Write("net.gateway", addresses.gateway);
  store.Write("net.ns", NameServers(addresses.primaryDns, addresses.secondaryDns).text);
}

void WriteSecurity(KeyStore& store, const Radio& radio) {
  store.WriteOrErase("net.authtype", radio.netAuth);
  store.WriteOrErase("net.enctype", radio.encryption);
  store.WriteOrErase("net.key", radio.key);
  store.WriteOrErase("net.wpatype", radio.wpaType);
  store.WriteOrErase("net.index", radio.index > 0 ? DecimalText(radio.index).text : nullptr);
}

bool Lists(const zq_List& networks, const char* ssid) {
  if (ssid == nullptr) return false;
  for (const auto* at = networks.First(); at != nullptr; at = networks.Next(at)) {
    const auto* const record = static_cast<const _ESSIDStruct*>(networks.Record(at));
    if (record->ESSID != nullptr && std::strcmp(record->ESSID, ssid) == 0) return true;
  }
  return false;
}

// Notes whether the network that is being set up is one that was seen: a hidden one, or one typed in, is not, and has
// to be shown beside the list.
void WriteListed(KeyStore& store, ZQNetwork& network, const char* ssid) {
  if (network.essidList == nullptr || network.essidList->Count() == 0) {
    network.getESSIDList(true, false, nullptr, false);
  }
  if (network.essidList != nullptr && Lists(*network.essidList, ssid)) {
    store.Erase("net.listed");
  } else {
    store.Write("net.listed", "FALSE");
  }
}

}  // namespace

void ZQNetwork::StripCarriageReturn(char* text) {
  if (text == nullptr) return;
  bool stripped = false;
  char* to = text;
  for (const char* from = text; *from != '\0';) {
    if (*from == '\n' || *from == '\r') {
      ZQUTIL_TRACE("ZQUtil Stripping a carriage return\n");
      stripped = true;
      // What moves into the freed place is not looked at, so of two line breaks only the first goes: readers of the
      // keys rely on it.
      if (*++from == '\0') break;
    }
    *to++ = *from++;
  }
  *to = '\0';
  if (stripped) ZQUTIL_TRACE("ZQUtil new string is %s\n", text);
}

int32_t ZQNetwork::setWiredNetworkDHCP() {
  ZQUTIL_TRACE("ZQUtil Writing new values for Wired DHCP Network\n");
  {
    KeyStore store;
    if (!store.Ok()) return -1;
    store.Write("net.dhcp", "YES");
    store.Write("net.wifi", "NO");
    Erase(store, {"net.essid", "net.authtype", "net.enctype", "net.key", "net.index", "net.ipaddr",
                  "net.netmask", "net.gateway", "net.ns"});
  }
  return restartNetwork();
}

void ZQNetwork::setWiredNetworkStatic(char* ip, char* netmask, char* primaryDns, char* secondaryDns,
                                      char* gateway) {
  ZQUTIL_TRACE("ZQUtil Writing new values for Wired Static Network\n");
  ZQUTIL_TRACE("IP %s Netmask %s PDNS %s SDNS %s GW %s\n", Shown(ip), Shown(netmask), Shown(primaryDns),
               Shown(secondaryDns), Shown(gateway));
  for (char* text : {ip, netmask, primaryDns, secondaryDns, gateway}) StripCarriageReturn(text);
  {
    KeyStore store;
    if (!store.Ok()) return;
    store.Write("net.dhcp", "NO");
    store.Write("net.wifi", "NO");
    Erase(store, {"net.essid", "net.authtype", "net.enctype", "net.key", "net.index"});
    WriteAddresses(store, {ip, netmask, primaryDns, secondaryDns, gateway});
  }
  restartNetwork();
}

int32_t ZQNetwork::setWirelessNetworkDHCP(char* ssid, char* netAuth, char* encryption, char* keyType,
                                          char* key, int32_t index, char* wpaType) {
  ZQUTIL_TRACE("ZQUtil Writing new values for Wireless DHCP Network\n");
  ZQUTIL_TRACE("SSID %s Auth %s Enc %s KeyType %s Key %s index %d WPAType %s\n", ShownInBrackets(ssid),
               ShownInBrackets(netAuth), ShownInBrackets(encryption), ShownInBrackets(keyType),
               ShownInBrackets(key), index, ShownInBrackets(wpaType));
  for (char* text : {ssid, netAuth, encryption, keyType, key, wpaType}) StripCarriageReturn(text);
  ZQUTIL_TRACE("ZQUtil Writing keys\n");
  {
    KeyStore store;
    if (!store.Ok()) {
      ZQUTIL_TRACE("ZQUtil Failed opening NVRAM keys\n");
      return -1;
    }
    ZQUTIL_TRACE("ZQUtil Writing net.dhcp\n");
    store.Write("net.dhcp", "YES");
    ZQUTIL_TRACE("ZQUtil Writing net.wifi\n");
    store.Write("net.wifi", "YES");
    ZQUTIL_TRACE("ZQUtil Writing net.essid\n");
    store.Write("net.essid", ssid);
    WriteSecurity(store, {ssid, netAuth, encryption, key, index, wpaType});
    Erase(store, {"net.ipaddr", "net.netmask", "net.gateway", "net.ns"});
    ZQUTIL_TRACE("ZQUtil Getting ESSID\n");
    WriteListed(store, *this, ssid);
  }
  ZQUTIL_TRACE("ZQUtil Calling for Network Restart\n");
  return restartNetwork();
}

int32_t ZQNetwork::setWirelessNetworkStatic(char* ip, char* netmask, char* primaryDns, char* secondaryDns,
                                            char* gateway, char* ssid, char* netAuth, char* encryption,
                                            char* keyType, char* key, int32_t index, char* wpaType) {
  ZQUTIL_TRACE("ZQUtil Writing new values for Wireless Static Network\n");
  ZQUTIL_TRACE(
      "IP %s Netmask %s PDNS %s SDNS %s GW %s ssid %s netAuth %s encryption %s keyType %s key %s index%d "
      "WPAType %s\n",
      Shown(ip), Shown(netmask), Shown(primaryDns), Shown(secondaryDns), Shown(gateway), Shown(ssid),
      Shown(netAuth), Shown(encryption), Shown(keyType), Shown(key), index, ShownInBrackets(wpaType));
  for (char* text :
       {ip, netmask, primaryDns, secondaryDns, gateway, ssid, netAuth, encryption, keyType, key, wpaType}) {
    StripCarriageReturn(text);
  }
  {
    KeyStore store;
    if (!store.Ok()) return -1;
    store.Write("net.dhcp", "NO");
    store.Write("net.wifi", "YES");
    store.Write("net.essid", ssid);
    WriteSecurity(store, {ssid, netAuth, encryption, key, index, wpaType});
    WriteAddresses(store, {ip, netmask, primaryDns, secondaryDns, gateway});
    WriteListed(store, *this, ssid);
  }
  return restartNetwork();
}
