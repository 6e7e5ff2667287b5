#include "ScanEvent.h"

#include <algorithm>
#include <cstring>

#include "WpaElement.h"
#include "ZQUtilTrace.h"
#include "zq_memory.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ScanEvent";
constexpr size_t kPrefixLength = 7;  // of "wpa_ie=" and "rsn_ie="

// What an event carries, at most `most` bytes of it; a length of 0 when it carries nothing.
struct Payload {
  const uint8_t* bytes;
  size_t length;
};

Payload PayloadOf(const iw_point& point, size_t most) {
  if (point.pointer == nullptr) return {nullptr, 0};
  return {static_cast<const uint8_t*>(point.pointer), std::min<size_t>(point.length, most)};
}

void ApplyName(const iw_point& point, _ESSIDStruct* record) {
  ZQUTIL_TRACE("ZQUtil SIOCGIWESSID\n");
  char* name = nullptr;
  const Payload payload = PayloadOf(point, IW_ESSID_MAX_SIZE);
  if (payload.length > 0 && point.flags != 0) {
    char text[IW_ESSID_MAX_SIZE + 1] = {};
    memcpy(text, payload.bytes, payload.length);
    name = zq__newString(text, kSourceTag, __LINE__);
  }
  zq__free(record->ESSID, kSourceTag, __LINE__);
  record->ESSID = name;
}

void ApplyKey(iw_point* point, _ESSIDStruct* record) {
  if (point->pointer == nullptr) point->flags |= IW_ENCODE_NOKEY;
  const char* const name = record->ESSID != nullptr ? record->ESSID : "(NULL)";
  const uint16_t flags = point->flags;
  if ((flags & IW_ENCODE_DISABLED) != 0) {
    ZQUTIL_TRACE("Encryption Key: off\n");
    record->encrypted = 0;
    ZQUTIL_TRACE("Discovered AP %s Open\n", name);
    return;
  }
  record->encrypted = 1;
  ZQUTIL_TRACE("Discovered AP %s Encrypted\n", name);
  // A key of its own in zeros: the library looks at the first byte of an empty one too.
  unsigned char key[IW_ENCODING_TOKEN_MAX + 1] = {};
  const Payload payload = PayloadOf(*point, IW_ENCODING_TOKEN_MAX);
  if (payload.length > 0) memcpy(key, payload.bytes, payload.length);
  char text[128];
  text[0] = '\0';
  iw_print_key(text, sizeof text, key, static_cast<int>(payload.length), flags);
  ZQUTIL_TRACE("Encryption Key: %s\n", text);
  const int index = flags & IW_ENCODE_INDEX;
  if (index > 1) ZQUTIL_TRACE("Index [%d]", index);
  if ((flags & IW_ENCODE_RESTRICTED) != 0) ZQUTIL_TRACE("Security mode: restricted");
  if ((flags & IW_ENCODE_OPEN) != 0) ZQUTIL_TRACE("Security mode: open");
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Two digits a byte, a last one alone is a byte too; ends at what is no digit. Returns the number of bytes.
int32_t DecodeHex(const char* text, uint8_t* bytes) {
  int32_t count = 0;
  for (int high = HexDigit(*text); high >= 0; high = HexDigit(*text)) {
    const int low = HexDigit(text[1]);
    bytes[count++] = static_cast<uint8_t>(low < 0 ? high : high * 16 + low);
    if (low < 0) break;
    text += 2;
  }
  return count;
}

void ApplyCustom(const iw_point& point, _ESSIDStruct* record) {
  ZQUTIL_TRACE("ZQUtil IWEVCUSTOM\n");
  char text[IW_CUSTOM_MAX + 1] = {};
  const Payload payload = PayloadOf(point, IW_CUSTOM_MAX);
  if (payload.length > 0) memcpy(text, payload.bytes, payload.length);
  ZQUTIL_TRACE("Extra: %s\n", text);
  if (strncmp(text, "wpa_ie=", kPrefixLength) != 0 && strncmp(text, "rsn_ie=", kPrefixLength) != 0) return;
  ZQUTIL_TRACE("ZQUtil this AP uses WPA or WPA2 Encryption\n");
  uint8_t bytes[sizeof text];
  ReadWpaElement(bytes, DecodeHex(text + kPrefixLength, bytes), record);
}

void ApplyElements(const iw_point& point, _ESSIDStruct* record) {
  const Payload payload = PayloadOf(point, IW_GENERIC_IE_MAX);
  ReadWpaElement(payload.bytes, static_cast<int32_t>(payload.length), record);
  ZQUTIL_TRACE("After GetWPAParams, WPAVersion is %d\n", record->WPAVersion);
}

}  // namespace

void ApplyScanEvent(iw_event* event, _ESSIDStruct* record) {
  switch (event->cmd) {
    case SIOCGIWESSID:
      return ApplyName(event->u.essid, record);
    case SIOCGIWENCODE:
      return ApplyKey(&event->u.encoding, record);
    case IWEVQUAL:
      ZQUTIL_TRACE("ZQUtil IWEVQUAL\n");
      record->strength = StrengthOfLevel(event->u.qual.level);
      return;
    case IWEVCUSTOM:
      return ApplyCustom(event->u.data, record);
    case IWEVGENIE:
      return ApplyElements(event->u.data, record);
    case SIOCGIWFREQ:
      ZQUTIL_TRACE("ZQUtil SIOCGIWFREQ\n");
      return;
    case SIOCGIWMODE:
      ZQUTIL_TRACE("ZQUtil SIOCGIWMODE\n");
      return;
    case SIOCGIWAP:
      ZQUTIL_TRACE("ZQUtil SIOCGIWAP\n");
      return;
    case SIOCGIWRATE:
      ZQUTIL_TRACE("ZQUtil SIOCGIWRATE\n");
      return;
    default:
      ZQUTIL_TRACE("Unknown command %d\n", int{event->cmd});
  }
}
