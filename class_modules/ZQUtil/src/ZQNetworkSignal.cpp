// How strong the network is that the radio has joined.
#include "WirelessRequest.h"
#include "ZQNetwork.h"
#include "ZQUtilTrace.h"
#include "zq_memory.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQNetworkSignal";
constexpr uint16_t kClearsUpdated = 1;

}  // namespace

_ESSIDStruct* ZQNetwork::GetESSIDInfo(const char* essid) {
  ZQUTIL_TRACE("ZQUtil scanning single SSID\n");
  auto* const record = static_cast<_ESSIDStruct*>(zq__calloc(1, sizeof(_ESSIDStruct), kSourceTag, __LINE__));
  if (record == nullptr) return nullptr;
  record->ESSID = zq__newString(essid, kSourceTag, __LINE__);
  if (record->ESSID == nullptr) return record;
  ZQUTIL_TRACE("ZQUtil Getting Parameters for ssid %s\n", essid);
  const NetworkSocket socket;
  if (!socket.Ok()) return record;
  const char* const interface = GetWirelessInterface();
  ZQUTIL_TRACE("ZQUtil putting in passive mode\n");
  char type[] = "passive";
  AskDriver(socket, interface, kWirelessScanType, type, strlen(type), 0);
  ZQUTIL_TRACE("ZQUtil getting stats\n");
  iw_statistics statistics{};
  static_assert(sizeof statistics == 32);
  if (AskDriver(socket, interface, SIOCGIWSTATS, &statistics, sizeof statistics, kClearsUpdated) < 0)
    return record;
  record->strength = StrengthOfLevel(statistics.qual.level);
  ZQUTIL_TRACE("ZQUtil Strength is %d\n", record->strength);
  const bool connected = ConnectedStatus();
  ZQUTIL_TRACE("Checking Connected Status\n");
  if (!connected) {
    ZQUTIL_TRACE("Overriding strength value because not connected\n");
    record->strength = 0;
  }
  return record;
}
