// What scripts are told of a network's security, in words.
#ifndef ZQUTIL_ESSID_TEXTS_H
#define ZQUTIL_ESSID_TEXTS_H

#include "ESSIDStruct.h"

struct AuthenticationTexts {
  const char* authType;
  const char* wpaType;
};

// A network that wants a key and tells no WPA version that is known is a WEP one.
inline AuthenticationTexts AuthenticationOf(const _ESSIDStruct& network) {
  if (network.encrypted == 0) return {"Disabled", "None"};
  switch (network.WPAVersion) {
    case 1:
      return {"WPA-PSK", "WPA1"};
    case 2:
      return {"WPA-PSK", "WPA2"};
    default:
      return {"WEP", "None"};
  }
}

// Of the ciphers alone, whether the network wants a key or not.
inline const char* CiphersOf(const _ESSIDStruct& network) {
  if (network.TKIP != 0) return network.AES != 0 ? "TKIP+AES" : "TKIP";
  return network.AES != 0 ? "AES" : "None";
}

#endif
