#include "wireless_driver.h"

#include <linux/wireless.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "hardware_file.h"
#include "hardware_text.h"
#include "radio_answers.h"
#include "radio_settings.h"
#include "world.h"

namespace {

constexpr char kRadioFile[] = "/hw/ra0/link.ini";
constexpr char kCallsFile[] = "/hw/ra0/calls";
constexpr char kRadio[] = "ra0";
constexpr char kWired[] = "eth0";

struct KnownRequest {
  unsigned long number;
  RadioRequest request;
  const char* name;  // in the file of calls
};
// The last two are the driver's own.
constexpr KnownRequest kKnown[] = {{SIOCGIWNAME, RadioRequest::kName, "name"},
                                   {SIOCGIWRANGE, RadioRequest::kRange, "range"},
                                   {SIOCSIWSCAN, RadioRequest::kScan, "scan"},
                                   {SIOCGIWSCAN, RadioRequest::kResults, "results"},
                                   {SIOCGIWSTATS, RadioRequest::kStatistics, "statistics"},
                                   {SIOCIWFIRSTPRIV + 0x0B, RadioRequest::kScanType, "scan_type"},
                                   {SIOCIWFIRSTPRIV + 0x11, RadioRequest::kStatus, "status"}};

const KnownRequest* Find(unsigned long number) {
  for (const KnownRequest& known : kKnown) {
    if (known.number == number) return &known;
  }
  return nullptr;
}

int Refuse(int reason) {
  errno = reason;
  return -1;
}

// What a program said, while it can be read: the scan type, or the one network that a scan is for.
std::string_view Said(RadioRequest which, const iw_point& place) {
  const char* const data = static_cast<const char*>(place.pointer);
  if (data == nullptr) return {};
  if (which == RadioRequest::kScanType) return {data, place.length};
  if (which != RadioRequest::kScan || place.length != sizeof(iw_scan_req)) return {};
  iw_scan_req wanted;
  memcpy(&wanted, data, sizeof(wanted));
  const size_t length = wanted.essid_len < sizeof(wanted.essid) ? wanted.essid_len : sizeof(wanted.essid);
  return {data + offsetof(iw_scan_req, essid), length};
}

// "results 4096: E2BIG 6000", "scan_type active: done", "range: done".
void NoteCall(const KnownRequest& known, uint16_t offered, const iwreq& request, int reason) {
  const char* const outcome = reason == 0 ? "done" : strerrorname_np(reason);
  char line[192];
  int length = 0;
  if (known.request == RadioRequest::kResults) {
    length = snprintf(line, sizeof(line), "%s %u: %s %u\n", known.name, unsigned{offered}, outcome,
                      unsigned{request.u.data.length});
  } else {
    const std::string_view said = Said(known.request, request.u.data);
    length = snprintf(line, sizeof(line), "%s%s%.*s: %s\n", known.name, said.empty() ? "" : " ",
                      static_cast<int>(said.size() < 64 ? said.size() : 64), said.data(), outcome);
  }
  if (length > 0) AppendHardware(kCallsFile, {line, static_cast<size_t>(length)});
}

int AskRadio(unsigned long number, iwreq& request) {
  const HardwareText text(kRadioFile);
  if (text.Text().empty()) return Refuse(ENODEV);
  const KnownRequest* const known = Find(number);
  if (known == nullptr) return Refuse(EOPNOTSUPP);
  const RadioSettings settings = ParseRadioSettings(text.Text());
  const uint16_t offered = request.u.data.length;
  const int wanted = settings.Error(known->request);
  const int result = wanted != 0 ? Refuse(wanted) : AnswerRadio(known->request, settings, request);
  const int reason = result == 0 ? 0 : errno;
  NoteCall(*known, offered, request, reason);
  return reason == 0 ? 0 : Refuse(reason);
}

bool IsSocket(int descriptor) {
  int domain = 0;
  socklen_t size = sizeof(domain);
  return getsockopt(descriptor, SOL_SOCKET, SO_DOMAIN, &domain, &size) == 0;
}

}  // namespace

bool IsWirelessRequest(int descriptor, unsigned long request) {
  if (request < SIOCIWFIRST || request > SIOCIWLAST || CurrentView() == nullptr) return false;
  const int before = errno;
  const bool isSocket = IsSocket(descriptor);
  errno = before;
  return isSocket;
}

int AnswerWireless(unsigned long request, void* argument) {
  if (argument == nullptr) return Refuse(EFAULT);
  const int before = errno;
  iwreq& wanted = *static_cast<iwreq*>(argument);
  if (strncmp(wanted.ifr_name, kWired, IFNAMSIZ) == 0) return Refuse(EOPNOTSUPP);
  if (strncmp(wanted.ifr_name, kRadio, IFNAMSIZ) != 0) return Refuse(ENODEV);
  const int result = AskRadio(request, wanted);
  if (result == 0) errno = before;
  return result;
}
