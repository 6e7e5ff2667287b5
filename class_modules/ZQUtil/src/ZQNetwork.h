// The device's network configuration, in the key store under keys that begin with "net.".
#ifndef ZQUTIL_ZQNETWORK_H
#define ZQUTIL_ZQNETWORK_H

#include <atomic>
#include <cstdint>

#include "ESSIDStruct.h"
#include "module_api.h"
#include "zq_list.h"

// Of the wireless library.
struct iw_event;
struct iw_range;
struct stream_descr;

class ZQUTIL_API ZQNetwork {
 public:
  // Applies the stored proxy to the environment, before the module has other threads. The flag is not used.
  explicit ZQNetwork(bool live);
  ZQNetwork(const ZQNetwork&) = delete;
  ZQNetwork& operator=(const ZQNetwork&) = delete;
  ~ZQNetwork();

  // What the device is configured to be. Every access opens the key store and closes it again; a store that cannot be
  // opened gives false, 0 or null. New strings are the caller's (zq__free). Any thread.
  const char* GetWirelessInterface();  // "ra0"
  const char* GetCurrentInterface();   // "ra0" or "eth0"
  bool isProxyEnabled();
  bool isDHCPEnabled();
  bool isWireless();
  int32_t getIndex();
  char* getKey();
  char* getKeyType();
  char* getEncryption();
  char* getNetAuth();
  char* getConfiguredESSID();
  char* getProxy();

  // Changes; the proxy ones on the script thread. Texts are stripped of line breaks in place. A store that cannot be
  // opened leaves everything as it was.
  void setProxyEnabled(bool enabled);
  void setProxy(char* proxy);
  // Sets or removes the environment variable "http_proxy" as "net.proxy" and "net.proxyen" say. Script
  // thread.
  void ConditionallyEnableProxy();
  // Takes line breaks out, in place; of two that follow each other only the first. Null is ignored.
  void StripCarriageReturn(char* text);
  // Set-ups: any text may be null, an index of 0 or less is none. They end in restartNetwork and its result; -1 when
  // the store cannot be opened. The wireless ones scan when no network was ever seen.
  int32_t setWiredNetworkDHCP();
  void setWiredNetworkStatic(char* ip, char* netmask, char* primaryDns, char* secondaryDns, char* gateway);
  int32_t setWirelessNetworkDHCP(char* ssid, char* netAuth, char* encryption, char* keyType, char* key,
                                 int32_t index, char* wpaType);
  int32_t setWirelessNetworkStatic(char* ip, char* netmask, char* primaryDns, char* secondaryDns,
                                   char* gateway, char* ssid, char* netAuth, char* encryption, char* keyType,
                                   char* key, int32_t index, char* wpaType);
  // Begins a restart and the connectivity monitor's steps; 1, or 0 when there is no queue (ZQNetworkRestart.h).
  int32_t restartNetwork();

  // What the kernel says now. New strings are the caller's (zq__free), never null. Any thread.
  char* getCurrentIP();
  char* getCurrentNetmask();
  char* getMACAddr();
  char* getGateway();
  void getDNSInfo(char** primary, char** secondary, char** third);
  char* getPrimaryDNS();
  char* getSecondaryDNS();
  bool ConnectedStatus();
  int32_t SignalStrength();

  // The list of networks in the air (_ESSIDStruct), owned by this object and good until the next scan. A scan
  // blocks for at least 250 ms; one thread at a time scans.
  zq_List* getESSIDList(bool active, bool cachedOnly, const char* essid, bool ignored);
  // A new record, the caller's with its name, with the strength of the current association.
  _ESSIDStruct* GetESSIDInfo(const char* essid);
  void EmptyESSIDList();
  // Applies one event of a scan to the record that is being built; 0.
  static int32_t get_scan_results(stream_descr* stream, iw_event* event, iw_range* range, int32_t hasRange,
                                  _ESSIDStruct* record, int socket);
  // Adds to the record what one WPA or RSN element says; `length` bytes are there.
  static void GetWPAParams(_ESSIDStruct* record, const unsigned char* element, int32_t length);

  // State of the connectivity monitor: 0 waiting for association, 1 associated or wired, 2 waiting for an
  // address, 3 Internet check started.
  std::atomic<int32_t> connectionState = 0;
  zq_List* essidList;
  // 2 on a Vardo2; anything else is the ordinary device.
  int32_t hardwareType = 0;

 private:
  // Before the module has other threads.
  ZQUTIL_HIDDEN static void MakeRoomForProxy();
};

#endif
