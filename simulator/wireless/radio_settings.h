// The radio and its driver's behaviour, as hw/ra0/link.ini says. Text in, plain values out.
#ifndef ZQSIM_RADIO_SETTINGS_H
#define ZQSIM_RADIO_SETTINGS_H

#include <cstdint>
#include <optional>
#include <string_view>

#include "cell_events.h"
#include "cells.h"
#include "event_stream.h"

// The requests that can be made to fail.
enum class RadioRequest : uint8_t { kRange, kScanType, kScan, kResults, kStatistics, kStatus, kName };
constexpr size_t kRadioRequests = 7;

struct RadioSettings {
  // [link]
  bool up = true;
  bool associated = false;
  CellName essid;
  // Nothing: the cell's.
  std::optional<uint8_t> level;
  std::optional<uint8_t> quality;

  // [driver]
  int errors[kRadioRequests] = {};  // that the request fails with; 0 none
  uint32_t resultsMs = 0;           // from the request for a scan until its results are there
  StreamForm form;
  uint32_t wantsBytes = 0;
  bool tellsLength = true;
  ElementsForm elements = ElementsForm::kEvents;

  // Of a radio that is switched off nobody gets a scan.
  int Error(RadioRequest request) const;
};

// A key that is missing, or a value that means nothing, leaves the default.
RadioSettings ParseRadioSettings(std::string_view text);

#endif
