#include "cell_events.h"

// What the next one wants before it.
#include <linux/wireless.h>
#include <sys/socket.h>

#include <cstring>

namespace {

constexpr uint8_t kRsnElement = 48;
constexpr uint8_t kVendorElement = 221;

uint32_t Megahertz(uint8_t channel) {
  if (channel == 14) return 2484;
  return channel < 14 ? 2407U + 5U * channel : 5000U + 5U * channel;
}

void TellAddress(const Cell& cell, EventStream& stream) {
  sockaddr address{};
  address.sa_family = 1;  // Ethernet
  memcpy(address.sa_data, cell.address, sizeof(cell.address));
  stream.Fixed(SIOCGIWAP, &address, sizeof(address));
}

void TellName(const Cell& cell, std::string_view asked, EventStream& stream) {
  const bool told = !cell.hidden || (!asked.empty() && cell.name.Text() == asked);
  stream.Variable(SIOCGIWESSID, cell.name.bytes, told ? cell.name.length : 0, told ? 1 : 0);
}

void TellFrequency(const Cell& cell, EventStream& stream) {
  iw_freq frequency{};
  frequency.m = static_cast<int32_t>(Megahertz(cell.channel));
  frequency.e = 6;
  stream.Fixed(SIOCGIWFREQ, &frequency, sizeof(frequency));
}

void TellKey(const Cell& cell, EventStream& stream) {
  const uint16_t flags = cell.wantsKey ? IW_ENCODE_ENABLED | IW_ENCODE_NOKEY : IW_ENCODE_DISABLED;
  stream.Variable(SIOCGIWENCODE, nullptr, 0, flags);
}

void TellQuality(const Cell& cell, EventStream& stream) {
  iw_quality quality{};
  quality.qual = cell.quality;
  quality.level = cell.level;
  quality.updated = IW_QUAL_QUAL_UPDATED | IW_QUAL_LEVEL_UPDATED | IW_QUAL_NOISE_INVALID;
  stream.Fixed(IWEVQUAL, &quality, sizeof(quality));
}

void TellText(const uint8_t* element, size_t size, EventStream& stream) {
  if (element[0] != kRsnElement && element[0] != kVendorElement) return;
  constexpr char kDigits[] = "0123456789abcdef";
  uint8_t text[7 + 2 * (2 + 255)];
  const std::string_view prefix = element[0] == kRsnElement ? "rsn_ie=" : "wpa_ie=";
  memcpy(text, prefix.data(), prefix.size());
  for (size_t i = 0; i < size; ++i) {
    text[7 + 2 * i] = static_cast<uint8_t>(kDigits[element[i] >> 4]);
    text[8 + 2 * i] = static_cast<uint8_t>(kDigits[element[i] & 15]);
  }
  stream.Variable(IWEVCUSTOM, text, 7 + 2 * size, 0);
}

void TellElements(const Cell& cell, ElementsForm form, EventStream& stream) {
  if (form == ElementsForm::kTogether) {
    if (cell.elementsLength > 0) stream.Variable(IWEVGENIE, cell.elements, cell.elementsLength, 0);
    return;
  }
  for (size_t at = 0; at < cell.elementsLength;) {
    const size_t rest = cell.elementsLength - at;
    // What a person wrote may end early: the last element is told as far as it goes.
    const size_t whole = rest > 1 ? size_t{2} + cell.elements[at + 1] : rest;
    const size_t size = whole < rest ? whole : rest;
    if (form == ElementsForm::kTexts) {
      TellText(cell.elements + at, size, stream);
    } else {
      stream.Variable(IWEVGENIE, cell.elements + at, size, 0);
    }
    at += size;
  }
}

}  // namespace

void TellCell(const Cell& cell, ElementsForm form, std::string_view asked, EventStream& stream) {
  TellAddress(cell, stream);
  TellName(cell, asked, stream);
  TellFrequency(cell, stream);
  stream.Fixed(SIOCGIWMODE, &cell.mode, sizeof(cell.mode));
  TellKey(cell, stream);
  TellQuality(cell, stream);
  TellElements(cell, form, stream);
}
