// The method table of the script class, said once: script name, declared argument count, wrapper, member.
//
// METHOD(script name, declared, member)      the wrapper ZQUtil_<member> calls ZQUtil::<member>
// FUNCTION(script name, declared, function)  the exported function itself is registered
//
// Scripts rely on the names letter for letter, the irregular ones included. The declared counts only inform: the
// engine does not enforce them, each method checks its arguments itself.
#ifndef ZQUTIL_METHOD_TABLE_H
#define ZQUTIL_METHOD_TABLE_H

#include "engine.h"
#include "module_api.h"

#define ZQUTIL_METHODS(METHOD, FUNCTION)                                  \
  FUNCTION("constructor", 0, ZQUtil_constructor)                          \
  FUNCTION("GetVersion", 0, ZQUtil_GetVersion)                            \
  FUNCTION("getESSIDList", 0, ZQUtil_GetESSIDList)                        \
  FUNCTION("getCachedESSIDList", 0, ZQUtil_GetCachedESSIDList)            \
  METHOD("backgroundGetESSIDList", 1, BackgroundGetESSIDList)             \
  METHOD("getESSID", 0, GetESSID)                                         \
  METHOD("getConfiguredESSID", 0, GetConfiguredESSID)                     \
  METHOD("getConfiguredESSIDListed", 0, GetConfiguredESSIDListed)         \
  METHOD("getIP", 0, GetIP)                                               \
  METHOD("getMACAddr", 0, GetMACAddr)                                     \
  METHOD("getSubnetMask", 0, GetSubnetMask)                               \
  METHOD("getPrimaryDNS", 0, GetPrimaryDNS)                               \
  METHOD("getSecondaryDNS", 0, GetSecondaryDNS)                           \
  METHOD("getGateway", 0, GetGateway)                                     \
  METHOD("getProxy", 0, GetProxy)                                         \
  METHOD("getNetworkType", 0, GetNetworkType)                             \
  METHOD("getDHCPEnabled", 0, GetDHCPEnabled)                             \
  METHOD("getProxyEnabled", 0, GetProxyEnabled)                           \
  METHOD("getSignalStrength", 0, GetSignalStrength)                       \
  METHOD("setWiredNetworkDHCP", 0, SetWiredNetworkDHCP)                   \
  METHOD("setWiredNetworkStatic", 5, SetWiredNetworkStatic)               \
  METHOD("setWirelessNetworkDHCP", 7, SetWirelessNetworkDHCP)             \
  METHOD("setWirelessNetworkStatic", 12, SetWirelessNetworkStatic)        \
  METHOD("getWirelessSecurity", 0, GetWirelessSecurity)                   \
  METHOD("setProxy", 1, SetProxy)                                         \
  METHOD("setProxyEnabled", 1, SetProxyEnabled)                           \
  METHOD("registerConnectivityListener", 1, RegisterConnectivityListener) \
  METHOD("checkConnectivity", 1, CheckConnectivity)                       \
  METHOD("getFirstTime", 0, GetFirstTime)                                 \
  METHOD("setFirstTime", 1, SetFirstTime)                                 \
  METHOD("getPhoneVolume", 0, GetPhoneVolume)                             \
  METHOD("setPhoneVolume", 1, SetPhoneVolume)                             \
  METHOD("MutePhone", 0, MutePhone)                                       \
  METHOD("UnmutePhone", 0, UnmutePhone)                                   \
  METHOD("getMediaVolume", 0, GetMediaVolume)                             \
  METHOD("setMediaVolume", 1, SetMediaVolume)                             \
  METHOD("getMicVolume", 0, GetMicVolume)                                 \
  METHOD("setMicVolume", 1, SetMicVolume)                                 \
  METHOD("MuteMic", 0, MuteMic)                                           \
  METHOD("UnmuteMic", 0, UnmuteMic)                                       \
  METHOD("getBrightness", 0, GetBrightness)                               \
  METHOD("setBrightness", 1, SetBrightness)                               \
  METHOD("getContrast", 0, GetContrast)                                   \
  METHOD("setContrast", 1, SetContrast)                                   \
  METHOD("getDimMode", 0, GetDimMode)                                     \
  METHOD("setDimMode", 1, SetDimMode)                                     \
  METHOD("screenStandby", 0, ScreenStandby)                               \
  METHOD("getTZList", 0, GetTZList)                                       \
  METHOD("getNTPEnabled", 0, GetNTPEnabled)                               \
  METHOD("setNTPEnabled", 1, SetNTPEnabled)                               \
  METHOD("getPrimaryNTPServer", 0, GetPrimaryNTPServer)                   \
  METHOD("setPrimaryNTPServer", 1, SetPrimaryNTPServer)                   \
  METHOD("getSecondaryNTPServer", 0, GetSecondaryNTPServer)               \
  METHOD("setSecondaryNTPServer", 1, SetSecondaryNTPServer)               \
  METHOD("setTime", 1, SetTime)                                           \
  METHOD("setTZ", 1, SetTZ)                                               \
  METHOD("getTZ", 0, GetTZ)                                               \
  METHOD("getMilitaryTimeEnabled", 0, GetMilitaryTimeEnabled)             \
  METHOD("setMilitaryTimeEnabled", 1, SetMilitaryTimeEnabled)             \
  METHOD("appLog", 3, AppLog)                                             \
  METHOD("isTablet", 0, IsTablet)                                         \
  METHOD("batteryPct", 0, BatteryPct)                                     \
  METHOD("chargeStatus", 0, ChargeStatus)                                 \
  METHOD("GetUpdateList", 0, GetUpdateList)                               \
  METHOD("beginUpdate", 1, BeginUpdate)                                   \
  METHOD("registerUpdateListener", 1, RegisterUpdateListener)             \
  METHOD("factoryReset", 0, FactoryReset)                                 \
  METHOD("registerAboutListener", 1, RegisterAboutListener)               \
  METHOD("getIniSetting", 2, GetIniSetting)                               \
  METHOD("setIniSetting", 3, SetIniSetting)                               \
  METHOD("deleteIniFile", 1, DeleteIniFile)                               \
  METHOD("writeFile", 2, WriteFile)                                       \
  METHOD("deleteFile", 1, DeleteFile)                                     \
  METHOD("utf8Encode", 1, UTF8Encode)

struct ZQUtilMethod {
  const char* scriptName;
  zq_NativeMethod native;
  uint32_t declared;
};

// In the order of definition.
extern const ZQUtilMethod kZQUtilMethods[];
extern const uint32_t kZQUtilMethodCount;

extern "C" {

ZQUTIL_API int32_t ZQUtil_constructor(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
ZQUTIL_API int32_t ZQUtil_finalizer(void* self);
// One member answers both: with a scan, and from the list of the last one.
ZQUTIL_API int32_t ZQUtil_GetESSIDList(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
ZQUTIL_API int32_t ZQUtil_GetCachedESSIDList(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
// An object with the device's versions; needs no singleton (ZQUtilAbout.cpp).
ZQUTIL_API int32_t ZQUtil_GetVersion(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);

#define ZQUTIL_DECLARE_WRAPPER(scriptName, declared, member) \
  ZQUTIL_API int32_t ZQUtil_##member(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
#define ZQUTIL_DECLARED_ELSEWHERE(scriptName, declared, function)
ZQUTIL_METHODS(ZQUTIL_DECLARE_WRAPPER, ZQUTIL_DECLARED_ELSEWHERE)
#undef ZQUTIL_DECLARE_WRAPPER
#undef ZQUTIL_DECLARED_ELSEWHERE

}  // extern "C"

#endif
