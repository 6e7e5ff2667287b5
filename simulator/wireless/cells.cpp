#include "cells.h"

#include <cstring>

#include "security.h"

namespace {

constexpr uint32_t kHighestChannel = 196;

void SetByte(std::string_view value, uint32_t limit, uint8_t* byte) {
  uint32_t number = 0;
  if (ReadDecimal(value, limit, &number)) *byte = static_cast<uint8_t>(number);
}

void SetFlag(std::string_view value, std::string_view yes, std::string_view no, bool* flag) {
  if (value == yes || value == no) *flag = value == yes;
}

void SetMode(std::string_view value, uint32_t* mode) {
  if (value == "master") *mode = 3;
  if (value == "ad-hoc") *mode = 1;
  ReadDecimal(value, UINT32_MAX, mode);
}

void SetAddress(std::string_view value, Cell* cell) {
  uint8_t bytes[sizeof(cell->address)];
  size_t length = 0;
  if (ReadHex(value, bytes, sizeof(bytes), &length) && length == sizeof(bytes)) {
    memcpy(cell->address, bytes, sizeof(bytes));
  }
}

// What a section says, until all its lines are read: their order does not count.
struct Section {
  bool hasHexName = false;
  std::string_view security;
  std::string_view elements;
  std::string_view key;
};

void Set(std::string_view key, std::string_view value, Cell* cell, Section* section) {
  if (key == "name" && !section->hasHexName) cell->name.Set(value);
  if (key == "name_hex" && cell->name.SetHex(value)) section->hasHexName = true;
  if (key == "hidden") SetFlag(value, "yes", "no", &cell->hidden);
  if (key == "mode") SetMode(value, &cell->mode);
  if (key == "security") section->security = value;
  if (key == "elements") section->elements = value;
  if (key == "key") section->key = value;
  if (key == "level") SetByte(value, UINT8_MAX, &cell->level);
  if (key == "quality") SetByte(value, 100, &cell->quality);
  if (key == "channel") SetByte(value, kHighestChannel, &cell->channel);
  if (key == "address") SetAddress(value, cell);
}

void Settle(const Section& section, Cell* cell) {
  const Security* const security = FindSecurity(section.security);
  if (security != nullptr) {
    cell->wantsKey = security->wantsKey;
    ReadHex(security->elements, cell->elements, sizeof(cell->elements), &cell->elementsLength);
  }
  uint8_t own[Cell::kMostElements];
  size_t length = 0;
  if (!section.elements.empty() && ReadHex(section.elements, own, sizeof(own), &length)) {
    memcpy(cell->elements, own, length);
    cell->elementsLength = length;
  }
  SetFlag(section.key, "on", "off", &cell->wantsKey);
}

}  // namespace

void CellName::Set(std::string_view text) {
  length = text.size() < kLongest ? text.size() : kLongest;
  if (length > 0) memcpy(bytes, text.data(), length);
}

bool CellName::SetHex(std::string_view text) {
  CellName read;
  if (!ReadHex(text, read.bytes, sizeof(read.bytes), &read.length)) return false;
  *this = read;
  return true;
}

Cells::Cells(std::string_view text) : lines_(text), atTitle_(false) {
  while (!atTitle_ && lines_.Next()) atTitle_ = lines_.IsTitle();
}

bool Cells::Next(Cell* cell) {
  if (!atTitle_) return false;
  *cell = Cell();
  cell->name.Set(lines_.Title());
  ++count_;
  cell->address[4] = static_cast<uint8_t>(0xC0 + (count_ >> 8));
  cell->address[5] = static_cast<uint8_t>(count_);
  Section section;
  atTitle_ = false;
  while (!atTitle_ && lines_.Next()) {
    atTitle_ = lines_.IsTitle();
    if (!atTitle_) Set(lines_.Key(), lines_.Value(), cell, &section);
  }
  Settle(section, cell);
  return true;
}
