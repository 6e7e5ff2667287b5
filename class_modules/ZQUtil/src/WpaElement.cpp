#include "WpaElement.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "ZQUtilTrace.h"

namespace {

constexpr uint8_t kVendorElement = 221;
constexpr uint8_t kRsnElement = 48;
constexpr uint8_t kWpaOui[] = {0x00, 0x50, 0xF2};
constexpr uint8_t kRsnOui[] = {0x00, 0x0F, 0xAC};
constexpr uint8_t kWpaVendorType = 1;
constexpr int32_t kSelectorSize = 4;
constexpr int32_t kCountSize = 2;

constexpr int kProprietary = -1;
constexpr int kNoCipher = 0;
constexpr int kTkip = 2;
constexpr int kCcmp = 4;
// By type.
constexpr const char* kCiphers[] = {"No", "WEP40", "TKIP", "WRAP", "CCMP", "WEP-104"};
constexpr const char* kSuites[] = {"No", "802.1x", "PSK"};

class Reader {
 public:
  Reader(const uint8_t* bytes, int32_t held, _ESSIDStruct* record)
      : bytes_(bytes), held_(held), record_(record), end_(held) {
    if (held > 1) end_ = std::min(held, bytes[1] + 2);
  }

  void Read() {
    if (held_ < 1 || !Begin()) return;
    isShort_ = end_ < selectors_ + kSelectorSize;
    if (isShort_) {
      ZQUTIL_TRACE("ZQUtil AP Reports short IE, so TKIP/TKIP\n");
      record_->TKIP = 1;
    }
    ReadGroupCipher();
    int32_t at = selectors_ + kSelectorSize;
    if (ReadPairwiseCiphers(&at) && ReadSuites(&at)) ReadCapabilities(at);
  }

 private:
  // Finds out what it is, and where its selectors begin. False for what is no concern of ours.
  bool Begin() {
    if (bytes_[0] == kVendorElement) return BeginWpa();
    return bytes_[0] == kRsnElement && BeginRsn();
  }

  bool BeginWpa() {
    if (end_ <= 7 || memcmp(bytes_ + 2, kWpaOui, sizeof kWpaOui) != 0 || bytes_[5] != kWpaVendorType) {
      ZQUTIL_TRACE("GetWPAParams returning because this is not a WPA encrypted device]\n");
      return false;
    }
    ZQUTIL_TRACE("GetWPAParams checking to set WPAVersion to 1 (now %d)\n", record_->WPAVersion);
    if (record_->WPAVersion < 2) {
      ZQUTIL_TRACE("GetWPAParams setting WPAVersion to 1\n");
      record_->WPAVersion = 1;
    }
    oui_ = kWpaOui;
    selectors_ = 8;
    return true;
  }

  bool BeginRsn() {
    if (end_ < 4) return false;
    ZQUTIL_TRACE("GetWPAParams setting WPAVersion to 2\n");
    record_->WPAVersion = 2;
    oui_ = kRsnOui;
    selectors_ = 4;
    return true;
  }

  int Type(int32_t at) const {
    return memcmp(bytes_ + at, oui_, sizeof kRsnOui) == 0 ? bytes_[at + 3] : kProprietary;
  }

  int Count(int32_t at) const { return bytes_[at] | bytes_[at + 1] << 8; }

  // A short element's selector is what follows it in the buffer; where the buffer ends too, there is none.
  void ReadGroupCipher() {
    const int type = selectors_ + kSelectorSize <= held_ ? Type(selectors_) : kNoCipher;
    if (type == kProprietary) {
      ZQUTIL_TRACE("ZQUtil AP Reports Proprietary Group Cipher\n");
    } else if (type < int{std::size(kCiphers)}) {
      const bool overridden = type == kCcmp && isShort_;
      ZQUTIL_TRACE("ZQUtil AP Reports %s Group Cipher%s\n", kCiphers[type],
                   overridden ? " BUT overriding AES" : "");
    }
    if (type == kTkip) record_->TKIP = 1;
    if (type == kCcmp) record_->AES = isShort_ ? 0 : 1;
  }

  // False when the list does not fit. Otherwise `*at` goes from the list to what follows it.
  bool ReadPairwiseCiphers(int32_t* at) {
    const int32_t first = *at + kCountSize;
    if (end_ < first) {
      ZQUTIL_TRACE("ZQUtil AP Reports no pairwise cipher, so TKIP\n");
      record_->TKIP = 1;
    }
    const int count = first <= held_ ? Count(*at) : 0;
    ZQUTIL_TRACE("Pairwise Ciphers (%d)\n", count);
    if (first + count * kSelectorSize > end_) return false;
    for (*at = first; *at < first + count * kSelectorSize; *at += kSelectorSize)
      ReadPairwiseCipher(Type(*at));
    return true;
  }

  void ReadPairwiseCipher(int type) {
    if (type == kProprietary) {
      ZQUTIL_TRACE("ZQUtil AP Reports Proprietary Pairwise Cipher\n");
    } else if (type < int{std::size(kCiphers)}) {
      ZQUTIL_TRACE("ZQUtil AP Reports %s Pairwise Cipher\n", kCiphers[type]);
    }
    if (type == kTkip) record_->TKIP = 1;
    if (type == kCcmp) record_->AES = 1;
  }

  bool ReadSuites(int32_t* at) {
    const int32_t first = *at + kCountSize;
    if (first > end_) return false;
    const int count = Count(*at);
    ZQUTIL_TRACE("ZQUtil AP Reports %d Authentication Suites\n", count);
    if (first + count * kSelectorSize > end_) return false;
    for (*at = first; *at < first + count * kSelectorSize; *at += kSelectorSize) {
      const int type = Type(*at);
      if (type == kProprietary) {
        ZQUTIL_TRACE("ZQUtil AP Reports Proprietary Authentication Suite\n");
      } else if (type < int{std::size(kSuites)}) {
        ZQUTIL_TRACE("ZQUtil AP Reports %s Authentication Suite\n", kSuites[type]);
      }
    }
    return true;
  }

  void ReadCapabilities(int32_t at) const {
    if (at < end_ && (bytes_[at] & 1) != 0) ZQUTIL_TRACE("ZQUtil AP Reports Preauthentication Supported\n");
  }

  const uint8_t* const bytes_;
  const int32_t held_;
  _ESSIDStruct* const record_;
  int32_t end_;  // of the element, as far as the buffer holds it
  const uint8_t* oui_ = nullptr;
  int32_t selectors_ = 0;
  bool isShort_ = false;
};

}  // namespace

void ReadWpaElement(const uint8_t* bytes, int32_t held, _ESSIDStruct* record) {
  if (bytes != nullptr) Reader(bytes, held, record).Read();
}
