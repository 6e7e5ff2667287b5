// What a person says about the light sensor in hw/light.ini, and the reading in hw/light. Text in, plain
// values out.
#ifndef ZQSIM_LIGHT_SETTINGS_H
#define ZQSIM_LIGHT_SETTINGS_H

#include <cstdint>
#include <string_view>

struct LightSettings {
  static constexpr uint32_t kNever = UINT32_MAX;

  uint32_t notReady = 0;    // reads that say "not ready yet" after each start
  bool fails = false;       // every transfer fails
  uint8_t address = 0x34;   // of the chip on the bus
  uint32_t transferUs = 0;  // microseconds that a transfer takes
};

// Lines "key = value"; ";" and "#" begin a comment. A key or value that means nothing leaves the default.
//   ready        at once | after N reads | never
//   transfers    work | fail
//   address      decimal or 0x...
//   transfer_us  0 to 1000000
LightSettings ParseLightSettings(std::string_view text);

// A decimal number, limited to 65535, between blanks. False, and the reading as it was, for anything else: an
// editor may have emptied the file a moment before it writes.
bool ParseLightReading(std::string_view text, uint16_t* reading);

#endif
