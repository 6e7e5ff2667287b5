// Any bytes as what a person wrote about the networks in the air and the radio.
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "cell_events.h"
#include "cells.h"
#include "radio_settings.h"

namespace {

void Require(bool holds) {
  if (!holds) abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const RadioSettings settings = ParseRadioSettings(text);
  Require(settings.essid.length <= CellName::kLongest);
  EventStream counter(nullptr, 0, settings.form);
  Cell cell;
  for (Cells cells(text); cells.Next(&cell);) {
    Require(cell.name.length <= CellName::kLongest && cell.elementsLength <= Cell::kMostElements);
    TellCell(cell, settings.elements, settings.essid.Text(), counter);
  }
  std::vector<uint8_t> buffer(counter.Length());
  EventStream stream(buffer.data(), buffer.size(), settings.form);
  for (Cells cells(text); cells.Next(&cell);) {
    TellCell(cell, settings.elements, settings.essid.Text(), stream);
  }
  Require(stream.Fits() && stream.Length() == counter.Length());
  // Events follow each other to the end.
  size_t at = 0;
  while (at + 4 <= buffer.size()) {
    const size_t length = buffer[at] | buffer[at + 1] << 8;
    Require(length >= 4);
    at += length;
  }
  Require(at == buffer.size());
  return 0;
}
