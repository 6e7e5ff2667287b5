#include "radio_answers.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "cell_events.h"
#include "cells.h"
#include "hardware_text.h"
#include "scan_memory.h"

namespace {

constexpr char kCellsFile[] = "/hw/ra0/cells.ini";
constexpr uint32_t kLongestLength = UINT16_MAX;
constexpr uint8_t kLastOldRange = 15;

int Refuse(int reason) {
  errno = reason;
  return -1;
}

// A copy of `size` bytes to the program, which said how much room there is.
int Give(const void* bytes, size_t size, iw_point& place) {
  if (place.pointer == nullptr) return Refuse(EFAULT);
  if (place.length < size) return Refuse(E2BIG);
  memcpy(place.pointer, bytes, size);
  place.length = static_cast<uint16_t>(size);
  return 0;
}

int AnswerName(iwreq& request) {
  memset(request.u.name, 0, sizeof(request.u.name));
  strcpy(request.u.name, "IEEE 802.11bgn");
  return 0;
}

int AnswerRange(const RadioSettings& settings, iw_point& place) {
  iw_range range{};
  range.we_version_compiled = settings.form.version;
  range.we_version_source = settings.form.version;
  // Before WE-16 the rest lay elsewhere; a program that knows no more than the version reads zeros there.
  if (settings.form.version > kLastOldRange) {
    range.max_qual.qual = 100;
    range.num_channels = 13;
    range.max_encoding_tokens = 4;
    range.scan_capa = IW_SCAN_CAPA_ESSID;
    range.enc_capa = IW_ENC_CAPA_WPA | IW_ENC_CAPA_WPA2 | IW_ENC_CAPA_CIPHER_TKIP | IW_ENC_CAPA_CIPHER_CCMP;
  }
  return Give(&range, sizeof(range), place);
}

int AnswerScanType(const iw_point& place) {
  if (place.pointer == nullptr) return Refuse(EFAULT);
  const std::string_view type(static_cast<const char*>(place.pointer), place.length);
  return type == "active" || type == "passive" ? 0 : Refuse(EINVAL);
}

int AnswerScan(const iw_point& place) {
  CellName asked;
  if (place.pointer != nullptr && (place.flags & IW_SCAN_THIS_ESSID) != 0) {
    iw_scan_req wanted;
    if (place.length != sizeof(wanted)) return Refuse(EINVAL);
    memcpy(&wanted, place.pointer, sizeof(wanted));
    if (wanted.essid_len > sizeof(wanted.essid)) return Refuse(EINVAL);
    asked.Set({reinterpret_cast<const char*>(wanted.essid), wanted.essid_len});
  }
  NoteScan(asked);
  return 0;
}

// All cells, into as much of the buffer as there is; the length that they take.
size_t TellCells(std::string_view cells, const RadioSettings& settings, void* buffer, size_t size) {
  const CellName asked = ScanAskedFor();
  EventStream stream(static_cast<uint8_t*>(buffer), size, settings.form);
  Cell cell;
  for (Cells rest(cells); rest.Next(&cell);) TellCell(cell, settings.elements, asked.Text(), stream);
  return stream.Length();
}

int AnswerResults(const RadioSettings& settings, iw_point& place) {
  if (MsSinceScan() < settings.resultsMs) return Refuse(EAGAIN);
  const HardwareText cells(kCellsFile);
  const size_t needed = TellCells(cells.Text(), settings, nullptr, 0);
  const size_t wanted = needed > settings.wantsBytes ? needed : settings.wantsBytes;
  if (needed > 0 && wanted > place.length) {
    if (settings.tellsLength) {
      place.length = static_cast<uint16_t>(wanted < kLongestLength ? wanted : kLongestLength);
    }
    return Refuse(E2BIG);
  }
  if (needed > 0 && place.pointer == nullptr) return Refuse(EFAULT);
  TellCells(cells.Text(), settings, place.pointer, place.length);
  place.length = static_cast<uint16_t>(needed);
  return 0;
}

int AnswerStatistics(const RadioSettings& settings, iw_point& place) {
  iw_statistics statistics{};
  statistics.qual = LinkQuality(settings);
  return Give(&statistics, sizeof(statistics), place);
}

int AnswerStatus(const RadioSettings& settings, iw_point& place) {
  char text[64] = "Not associated";
  if (settings.associated) {
    snprintf(text, sizeof(text), "Connected to %.*s", static_cast<int>(settings.essid.length),
             reinterpret_cast<const char*>(settings.essid.bytes));
  }
  return Give(text, strlen(text) + 1, place);
}

}  // namespace

iw_quality LinkQuality(const RadioSettings& settings) {
  iw_quality link{};
  if (!settings.associated) return link;
  const HardwareText cells(kCellsFile);
  Cell cell;
  for (Cells rest(cells.Text()); rest.Next(&cell);) {
    if (cell.name.Text() != settings.essid.Text()) continue;
    link.level = cell.level;
    link.qual = cell.quality;
    break;
  }
  link.level = settings.level.value_or(link.level);
  link.qual = settings.quality.value_or(link.qual);
  link.updated = IW_QUAL_QUAL_UPDATED | IW_QUAL_LEVEL_UPDATED | IW_QUAL_NOISE_INVALID;
  return link;
}

int AnswerRadio(RadioRequest which, const RadioSettings& settings, iwreq& request) {
  switch (which) {
    case RadioRequest::kName:
      return AnswerName(request);
    case RadioRequest::kRange:
      return AnswerRange(settings, request.u.data);
    case RadioRequest::kScanType:
      return AnswerScanType(request.u.data);
    case RadioRequest::kScan:
      return AnswerScan(request.u.data);
    case RadioRequest::kResults:
      return AnswerResults(settings, request.u.data);
    case RadioRequest::kStatistics:
      return AnswerStatistics(settings, request.u.data);
    case RadioRequest::kStatus:
      return AnswerStatus(settings, request.u.data);
  }
  return Refuse(EOPNOTSUPP);
}
