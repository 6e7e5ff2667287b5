// The one native object that all script objects of class ZQUtil share. It owns the device-facing parts and is
// the module's message queue.
#ifndef ZQUTIL_ZQUTIL_H
#define ZQUTIL_ZQUTIL_H

#include <atomic>
#include <cstdint>

#include "engine.h"
#include "module_api.h"
#include "zq_msgq.h"

class ZQNetwork;
class ZQAudioVolume;
class ZQScreen;
class ZQDateTime;

// Messages that the module posts to its own queue; 0x10007 and 0x10008 are in ZQUtilPersistence.h.
enum : uint32_t {
  kMsgBackgroundScan = 0x1000c,
  kMsgHttpObjectDone = 0x1000d,  // second parameter: the HTTP object to destroy
  kMsgUpdateServerReached = 0x1000e,
  kMsgUpdateServerNotReached = 0x1000f
};

// Timers of the module's queue.
enum : uint32_t {
  // Shared by the update check and the connectivity check: both lead to the same check.
  kTimerSoftwareUpdate = 1,
  kTimerNetworkStatus = 2,
  kTimerTimeDrift = 3
};

// Script objects that share the singleton.
extern std::atomic<int32_t> ZQUtilInstanceCount;
// The queue of the living singleton, set when the queue has started. After the singleton's end it names a
// queue that is gone, which posts and timers refuse.
extern std::atomic<uint32_t> ZQUtilMsgQHandle;

class ZQUTIL_API ZQUtil : public zq_MsgQ {
 public:
  // The singleton, built by the first call, which others on other threads wait for; every call counts one sharer more.
  // Script thread, or a listener's script on a thread of the module. Null, and nothing counted, while the last
  // finalizer destroys the singleton on the script thread: the module begins again when that is done.
  static ZQUtil* Instance();
  // One sharer less; the last one destroys the singleton. Script thread only.
  static void Dereference();

  ZQUtil();
  ~ZQUtil() override;

  // Queue thread only. Owns the message.
  void MessageHandler(MSG_COMMON* message) override;

  // Deferred persistence (ZQUtilPersistence.cpp). They copy their arguments and
  // leave the disk to other threads. Any thread.
  static void my_WriteINIFileString(const char* section, const char* key, const char* value,
                                    const char* file);
  static void my_WriteINIFileInt(const char* section, const char* key, int32_t value, const char* file);
  static void AsyncNVRAMWrite(const char* key, const char* value);
  static void AsyncConfigWrite(int32_t kind);

  // Starts a check for updates, which is also the Internet connectivity test: it ends in a message "update
  // server reached" or "not reached" (ZQUpdateCheck.cpp). Any thread.
  void CheckForAvailableUpdates();
  // Decrypts the package that `in` reads into `out`; both are plain descriptors and stay open (UpdateDecrypt.cpp).
  // Any thread.
  static void update_decrypt(int in, int out);
  // A TCP connection to the log server, or to the proxy that "http_proxy" names; its events come to this queue. 0
  // when there is none (ZQApplicationLog.cpp). Any thread.
  uint32_t OpenSocketToProxyOrAddress(const char* host, int32_t port);
  // One step of the connectivity monitor, each second while it runs (ZqUtilConnectivity.cpp). Queue thread only.
  void HandleNetworkCheckTimer();

  // The number at the start of the file's first line; 0 when there is none (ZQUtilPower.cpp).
  static int32_t GetIntValueFromFileContents(const char* path);

  // Script methods: the engine's native signature; 1 handled, 0 failure. Script thread only.
  // Network (ZqUtilNetwork.cpp, ZqUtilNetworkScan.cpp, ZqUtilNetworkSettings.cpp)
  int32_t GetESSIDList(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval, bool cached, bool flag);
  int32_t BackgroundGetESSIDList(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetESSID(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetConfiguredESSID(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetConfiguredESSIDListed(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetIP(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetMACAddr(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetSubnetMask(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetPrimaryDNS(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetSecondaryDNS(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetGateway(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetProxy(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetNetworkType(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetDHCPEnabled(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetProxyEnabled(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetSignalStrength(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t SetWiredNetworkDHCP(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t SetWiredNetworkStatic(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t SetWirelessNetworkDHCP(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t SetWirelessNetworkStatic(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetWirelessSecurity(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t SetProxy(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t SetProxyEnabled(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  // Connectivity monitor (ZqUtilConnectivity.cpp)
  int32_t RegisterConnectivityListener(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t CheckConnectivity(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetFirstTime(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t SetFirstTime(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  // Volumes (audio_volume_methods.cpp)
  int32_t GetPhoneVolume(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t SetPhoneVolume(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t MutePhone(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t UnmutePhone(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetMediaVolume(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t SetMediaVolume(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetMicVolume(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t SetMicVolume(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t MuteMic(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t UnmuteMic(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  // Screen (ZQScreenMethods.cpp)
  int32_t GetBrightness(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t SetBrightness(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetContrast(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t SetContrast(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetDimMode(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t SetDimMode(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t ScreenStandby(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  // Date and time (ZQUtilDateTime.cpp)
  int32_t GetTZList(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetNTPEnabled(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t SetNTPEnabled(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetPrimaryNTPServer(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t SetPrimaryNTPServer(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetSecondaryNTPServer(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t SetSecondaryNTPServer(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t SetTime(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t SetTZ(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetTZ(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t GetMilitaryTimeEnabled(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t SetMilitaryTimeEnabled(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  // Application log (ZQApplicationLog.cpp)
  int32_t AppLog(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  // Software update (ZQSoftwareUpdate.cpp, RebootDevice.cpp)
  int32_t GetUpdateList(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t BeginUpdate(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t RegisterUpdateListener(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t FactoryReset(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  // About (ZQUtilAbout.cpp)
  int32_t RegisterAboutListener(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  // Power (ZQUtilPower.cpp)
  int32_t IsTablet(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t BatteryPct(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t ChargeStatus(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  // Settings and cache files (ZQUtilSettings.cpp)
  int32_t GetIniSetting(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t SetIniSetting(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t DeleteIniFile(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t WriteFile(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t DeleteFile(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);
  int32_t UTF8Encode(void* self, uint32_t argc, zq_Value* argv, zq_Value* rval);

  // The device-facing parts, owned. They stand while the queue handles messages.
  ZQNetwork* network = nullptr;
  ZQAudioVolume* audioVolume = nullptr;
  ZQScreen* screen = nullptr;
  ZQDateTime* dateTime = nullptr;

  // Listener objects are the engine's, kept alive as properties of gLibObj. Set on the script thread,
  // read, and the scan's cleared, on worker threads.
  std::atomic<void*> aboutListener = nullptr;
  // Entry point of the application-log library, or null.
  int32_t (*appLogActivity)(const char* application, const char* action, const char* detail) = nullptr;
  std::atomic<void*> connectivityListener = nullptr;
  // The result of the current connectivity check was already delivered.
  std::atomic<bool> connectivityReported = false;
  std::atomic<void*> getessidListener = nullptr;
  std::atomic<bool> newInterfaces = false;
  // One-second waits of the connectivity monitor for interfaces to appear.
  std::atomic<int32_t> interfaceWaits = 0;
  // Last reading of the time-drift check, seconds into the month; 0: none yet.
  std::atomic<uint32_t> timeDriftSeconds = 0;

  static ZQUtil* m_pInstance;
  // This device's identity at the update server; 0: the server has not told it since the process began. The settings
  // file keeps it for others and is not read for it.
  static std::atomic<int32_t> myDeviceID;
  // Milliseconds between periodic update checks.
  static std::atomic<int32_t> softwareUpdateCheckTime;

 private:
  ZQUTIL_HIDDEN void OnQueueStarted();
  ZQUTIL_HIDDEN void OnTimer(uint32_t id, uintptr_t param);
  ZQUTIL_HIDDEN void OnSoftwareUpdateTimer();
  ZQUTIL_HIDDEN void OnNetworkStatusTimer(uintptr_t param);
  ZQUTIL_HIDDEN void OnTimeDriftTimer();
  ZQUTIL_HIDDEN void OnConnectSuccess(uint32_t socket);
  ZQUTIL_HIDDEN void OnConnectFailure(uint32_t socket);
  ZQUTIL_HIDDEN void OnBackgroundScan();
  ZQUTIL_HIDDEN void ReportConnectivity(const char* trace, const char* method);
  ZQUTIL_HIDDEN void SaveConfig(int32_t kind);

  // This object's share of the HTTP library, to be given back.
  bool httpPrepared = false;
};

// Posts a message of the module to its own queue. False when there is no queue: what the parameter points to
// stays the caller's. Any thread.
bool PostToModule(uint32_t type, uintptr_t param);

#endif
