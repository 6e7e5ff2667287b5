// A cell as the driver tells it: address, name, frequency, mode, key, quality, and then its elements.
#ifndef ZQSIM_CELL_EVENTS_H
#define ZQSIM_CELL_EVENTS_H

#include <cstdint>
#include <string_view>

#include "cells.h"
#include "event_stream.h"

enum class ElementsForm : uint8_t {
  kEvents,    // an event for each
  kTogether,  // one event for all
  kTexts      // as the texts "wpa_ie=..." and "rsn_ie=..."
};

// `asked` is the name that the scan was for: a hidden cell with it tells its name.
void TellCell(const Cell& cell, ElementsForm form, std::string_view asked, EventStream& stream);

#endif
