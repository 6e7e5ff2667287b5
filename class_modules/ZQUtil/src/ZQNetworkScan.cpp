// Which networks are in the air: asks the driver, and keeps the list.
#include <sys/select.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "ScanEvent.h"
#include "ScanResults.h"
#include "ScanRetry.h"
#include "ScanStream.h"
#include "WirelessLibrary.h"
#include "WirelessRequest.h"
#include "WpaElement.h"
#include "ZQNetwork.h"
#include "ZQUtilTrace.h"
#include "zq_memory.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQNetworkScan";
constexpr int kFirstVersionThatScans = 14;
constexpr uint32_t kFirstBufferSize = 4096;
constexpr suseconds_t kFirstWaitUs = 250000;
constexpr suseconds_t kLaterWaitUs = 100000;

struct Freed {
  void operator()(char* buffer) const { zq__free(buffer, kSourceTag, __LINE__); }
};
using ScanBuffer = std::unique_ptr<char, Freed>;

// In zeros; null when there is no memory.
ScanBuffer NewBuffer(uint32_t size) {
  return ScanBuffer(static_cast<char*>(zq__calloc(size + ScanStream::kSlack, 1, kSourceTag, __LINE__)));
}

void SetScanType(const NetworkSocket& socket, const char* interface, bool active) {
  char type[] = "passive";
  if (active) {
    ZQUTIL_TRACE("ZQUtil GetESSIDList Active Scan\n");
    strcpy(type, "active");
  } else {
    ZQUTIL_TRACE("ZQUtil GetESSIDList Passive Scan\n");
  }
  if (AskDriver(socket, interface, kWirelessScanType, type, strlen(type), 0) >= 0) return;
  ZQUTIL_TRACE("WLSCAN_TYPE Failed\n");
  perror("WLSCAN_TYPE:");
}

// False when there is no scanning.
bool ReadRange(const NetworkSocket& socket, const char* interface, iw_range* range) {
  if (!LoadWirelessLibrary() || iw_get_range_info(socket.Descriptor(), interface, range) < 0 ||
      range->we_version_compiled < kFirstVersionThatScans) {
    ZQUTIL_TRACE("ZQUtil GetESSIDList failed has_range of %s %d\n", interface,
                 int{range->we_version_compiled});
    return false;
  }
  ZQUTIL_TRACE("ZQUtil Version %d Range Enc Capa is %d\n", int{range->we_version_compiled},
               static_cast<int>(range->enc_capa));
  return true;
}

// Asks for one network where the request can name it. False when the driver refuses.
bool StartScan(const NetworkSocket& socket, const char* interface, const char* essid) {
  iw_scan_req wanted{};
  bool named = false;
  if (essid != nullptr) {
    ZQUTIL_TRACE("ZQUtil looking for specific essid %s\n", essid);
    const size_t length = strlen(essid);
    named = length <= IW_ESSID_MAX_SIZE;
    if (named) {
      wanted.essid_len = static_cast<uint8_t>(length);
      wanted.bssid.sa_family = ARPHRD_ETHER;
      memset(wanted.bssid.sa_data, 0xFF, ETH_ALEN);
      memcpy(wanted.essid, essid, length);
    } else {
      ZQUTIL_TRACE("ZQUtil ssid is too large!!!!\n");
    }
  }
  ZQUTIL_TRACE("ZQUtil Initiating Scan\n");
  const int result =
      named ? AskDriver(socket, interface, SIOCSIWSCAN, &wanted, sizeof wanted, IW_SCAN_THIS_ESSID)
            : AskDriver(socket, interface, SIOCSIWSCAN, nullptr, 0, 0);
  if (result >= 0) return true;
  ZQUTIL_TRACE("ZQUtil GetESSIDList failed initiate scan %d \n", result);
  perror("ioctl");
  return false;
}

// Waits out `*left`, and leaves there what was not waited for. False on failure.
bool Wait(timeval* left) {
  while (select(0, nullptr, nullptr, nullptr, left) < 0) {
    if (errno != EAGAIN && errno != EINTR) return false;
  }
  return true;
}

// The results' length, 0 for none, or -1 when there is no getting them.
int32_t FetchResults(const NetworkSocket& socket, const char* interface, int version, ScanBuffer* buffer) {
  timeval wait{0, kFirstWaitUs};
  uint32_t held = 0;
  bool waits = true;
  for (ScanRetry next{ScanRetry::Step::kAskInTurn, kFirstBufferSize};;) {
    if (waits && !Wait(&wait)) return -1;
    if (held != next.size) {
      *buffer = NewBuffer(next.size);
      held = next.size;
    }
    if (*buffer == nullptr) return -1;
    uint16_t reported = 0;
    if (AskDriver(socket, interface, SIOCGIWSCAN, buffer->get(), held, 0, &reported) >= 0) {
      return static_cast<int32_t>(std::min<uint32_t>(reported, held));
    }
    next = AfterRefusal(errno, version, held, reported);
    if (next.step == ScanRetry::Step::kGiveUp) return -1;
    waits = next.step != ScanRetry::Step::kAskAtOnce;
    // Otherwise a wait that is over stays over: its timer stands at zero.
    if (next.step == ScanRetry::Step::kAskLater) wait = {0, kLaterWaitUs};
  }
}

}  // namespace

zq_List* ZQNetwork::getESSIDList(bool active, bool cachedOnly, const char* essid, bool /*ignored*/) {
  ZQUTIL_TRACE("ZQUtil GetESSIDList\n");
  if (cachedOnly) return essidList;
  EmptyESSIDList();
  const NetworkSocket socket;
  if (!socket.Ok()) {
    ZQUTIL_TRACE("ZQUtil GetESSIDList bad socket\n");
    return essidList;
  }
  const char* const interface = GetWirelessInterface();
  SetScanType(socket, interface, active);
  iw_range range{};
  if (!ReadRange(socket, interface, &range) || !StartScan(socket, interface, essid)) return essidList;
  ScanBuffer buffer;
  const int32_t length = FetchResults(socket, interface, range.we_version_compiled, &buffer);
  if (length < 0) ZQUTIL_TRACE("ZQUtil GetESSIDList Error\n");
  if (length > 0) {
    ReadScanResults(buffer.get(), static_cast<size_t>(length), range.we_version_compiled, essid, essidList);
  }
  return essidList;
}

void ZQNetwork::EmptyESSIDList() {
  while (auto* const record = static_cast<_ESSIDStruct*>(essidList->RemoveHead())) {
    zq__free(record->ESSID, kSourceTag, __LINE__);
    zq__free(record, kSourceTag, __LINE__);
  }
}

int32_t ZQNetwork::get_scan_results(stream_descr* /*stream*/, iw_event* event, iw_range* /*range*/,
                                    int32_t /*hasRange*/, _ESSIDStruct* record, int /*socket*/) {
  ApplyScanEvent(event, record);
  return 0;
}

void ZQNetwork::GetWPAParams(_ESSIDStruct* record, const unsigned char* element, int32_t length) {
  ReadWpaElement(element, length, record);
}
