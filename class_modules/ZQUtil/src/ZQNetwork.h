// The device's network configuration, in the key store under keys that begin with "net.".
#ifndef ZQUTIL_ZQNETWORK_H
#define ZQUTIL_ZQNETWORK_H

#include <atomic>
#include <cstdint>

#include "module_api.h"
#include "zq_list.h"

class ZQUTIL_API ZQNetwork {
 public:
  // Applies the stored proxy to the environment. The flag is not used.
  explicit ZQNetwork(bool live);
  ZQNetwork(const ZQNetwork&) = delete;
  ZQNetwork& operator=(const ZQNetwork&) = delete;
  ~ZQNetwork();

  // The list of networks in the air, owned by this object.
  zq_List* getESSIDList(bool scan, bool background, const char* essid, bool passive);
  // Sets or removes the environment variable "http_proxy" as "net.proxy" and "net.proxyen" say. Script
  // thread.
  void ConditionallyEnableProxy();

  // State of the connectivity monitor: 0 waiting for association, 1 associated or wired, 2 waiting for an
  // address, 3 Internet check started.
  std::atomic<int32_t> connectionState = 0;
  zq_List* essidList;
  // 2 on a Vardo2; anything else is the ordinary device.
  int32_t hardwareType = 0;
};

#endif
