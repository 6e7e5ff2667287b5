// The networks in the air, as a person writes them in hw/ra0/cells.ini. Text in, plain values out.
#ifndef ZQSIM_CELLS_H
#define ZQSIM_CELLS_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "setting_lines.h"

// A network's name: any bytes, no terminator.
struct CellName {
  static constexpr size_t kLongest = 32;

  uint8_t bytes[kLongest] = {};
  size_t length = 0;

  // What is longer is cut.
  void Set(std::string_view text);
  // Bytes in hexadecimal. False, and the name as it was, for anything else and for too many.
  bool SetHex(std::string_view text);
  std::string_view Text() const { return {reinterpret_cast<const char*>(bytes), length}; }
};

struct Cell {
  static constexpr size_t kMostElements = 1024;

  CellName name;
  bool hidden = false;
  uint32_t mode = 3;  // as the wireless extensions count them: 1 ad-hoc, 3 master
  uint8_t level = 180;
  uint8_t quality = 50;
  uint8_t channel = 6;
  uint8_t address[6] = {0x02, 0, 0, 0, 0xC0, 0};
  bool wantsKey = false;
  // Information elements, one after the other.
  uint8_t elements[kMostElements] = {};
  size_t elementsLength = 0;
};

// The cells of a file, one by one.
class Cells {
 public:
  explicit Cells(std::string_view text);
  // Reads the next section; false when there is none.
  bool Next(Cell* cell);

 private:
  SettingLines lines_;
  bool atTitle_;
  uint32_t count_ = 0;
};

#endif
