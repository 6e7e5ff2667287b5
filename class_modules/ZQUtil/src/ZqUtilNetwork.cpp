// The network methods of the script class that read. Without the network object each returns success and does nothing.
#include "KeyStore.h"
#include "OwnedText.h"
#include "ZQNetwork.h"
#include "ZQUtil.h"
#include "ZQUtilTrace.h"
#include "script_values.h"

namespace {

struct TextGetter {
  const char* call;    // traced first
  const char* answer;  // traced before the answer
  char* (ZQNetwork::*operation)();
};

// An answer that is null is "" and not traced.
int32_t ReturnText(ZQNetwork* network, const TextGetter& getter, zq_Value* rval) {
  ZQUTIL_TRACE("%s", getter.call);
  if (network == nullptr) return 1;
  const OwnedText text((network->*getter.operation)());
  if (text != nullptr) ZQUTIL_TRACE("%s %s\n", getter.answer, text.get());
  ReturnString(text != nullptr ? text.get() : "", rval);
  return 1;
}

int32_t ReturnWord(const char* word, zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil returning %s\n", word);
  ReturnString(word, rval);
  return 1;
}

}  // namespace

int32_t ZQUtil::GetIP(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  return ReturnText(network,
                    {"ZQUtil GUI Call to GetIP\n", "ZQUtil GetIP Returning", &ZQNetwork::getCurrentIP}, rval);
}

int32_t ZQUtil::GetMACAddr(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  return ReturnText(
      network, {"ZQUtil GUI Call to GetMACAddr\n", "ZQUtil GetMACAddr returning", &ZQNetwork::getMACAddr},
      rval);
}

int32_t ZQUtil::GetSubnetMask(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  return ReturnText(
      network,
      {"ZQUtil GUI Call to GetSubnetMask\n", "ZQUtil GetSubnetMask returning", &ZQNetwork::getCurrentNetmask},
      rval);
}

int32_t ZQUtil::GetPrimaryDNS(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  return ReturnText(
      network,
      {"ZQUtil GUI Call to GetPrimaryDNS\n", "ZQUtil GetPrimaryDNS returning", &ZQNetwork::getPrimaryDNS},
      rval);
}

int32_t ZQUtil::GetSecondaryDNS(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  return ReturnText(network,
                    {"ZQUtil GUI Call to GetSecondaryDNS\n", "ZQUtil GetSecondaryDNS returning",
                     &ZQNetwork::getSecondaryDNS},
                    rval);
}

int32_t ZQUtil::GetGateway(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  return ReturnText(
      network, {"ZQUtil GUI Call to GetGateway\n", "ZQUtil GetGateway returning", &ZQNetwork::getGateway},
      rval);
}

int32_t ZQUtil::GetProxy(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  return ReturnText(
      network, {"ZQUtil GUI Call to GetProxy\n", "ZQUtil GetProxy returning", &ZQNetwork::getProxy}, rval);
}

int32_t ZQUtil::GetConfiguredESSID(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  return ReturnText(network,
                    {"ZQUtil GUI Call to GetConfiguredESSID\n", "ZQUtil GetConfiguredESSID Returning",
                     &ZQNetwork::getConfiguredESSID},
                    rval);
}

int32_t ZQUtil::GetSignalStrength(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetSignalStrength\n");
  if (network == nullptr) return 1;
  const int32_t strength = network->SignalStrength();
  ZQUTIL_TRACE("ZQUtil GetSignalStrength Returning %d\n", strength);
  ReturnInteger(strength, rval);
  return 1;
}

int32_t ZQUtil::GetNetworkType(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetNetworkType\n");
  return network == nullptr ? 1 : ReturnWord(network->isWireless() ? "wireless" : "wired", rval);
}

int32_t ZQUtil::GetProxyEnabled(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetProxyEnabled\n");
  return network == nullptr ? 1 : ReturnWord(network->isProxyEnabled() ? "YES" : "NO", rval);
}

int32_t ZQUtil::GetDHCPEnabled(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetDHCPEnabled\n");
  return network == nullptr ? 1 : ReturnWord(network->isDHCPEnabled() ? "YES" : "NO", rval);
}

// These two read the key store themselves and answer without the network object, too.

int32_t ZQUtil::GetConfiguredESSIDListed(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/,
                                         zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetConfiguredESSIDListed\n");
  KeyStoreValue value;
  if (!ReadKeyStore("net.listed", value)) return 0;
  ZQUTIL_TRACE("ZQUtil GetConfiguredESSIDListed returning %s\n", value.text);
  ReturnString(value.text, rval);
  return 1;
}

int32_t ZQUtil::GetFirstTime(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  KeyStoreValue value;
  if (!ReadKeyStore("net.firsttime", value)) return 0;
  const char* const text = value.text[0] != '\0' ? value.text : "No";
  ZQUTIL_TRACE("ZQUtil GetFirstTime returning %s\n", text);
  ReturnString(text, rval);
  return 1;
}

int32_t ZQUtil::GetWirelessSecurity(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetWirelessSecurity\n");
  void* const object = ReturnNewObject(rval);
  if (network == nullptr) return 1;
  const int32_t index = network->getIndex();
  const OwnedText netAuth(network->getNetAuth());
  const OwnedText encryption(network->getEncryption());
  const OwnedText keyType(network->getKeyType());
  const OwnedText key(network->getKey());
  if (object != nullptr) {
    SetTextProperty(object, "netAuth", netAuth.get());
    SetTextProperty(object, "encryption", encryption.get());
    SetTextProperty(object, "keyType", keyType.get());
    SetTextProperty(object, "key", key.get());
    SetValueProperty(object, "index", ZQ_VALUE_FROM_INT(index));
  }
  ZQUTIL_TRACE("ZQUtil GetWirelessSecurity Done\n");
  return 1;
}
