// What a person says about the display in hw/display.ini, and what the display does there. Text in, plain values
// out.
#ifndef ZQSIM_DISPLAY_SETTINGS_H
#define ZQSIM_DISPLAY_SETTINGS_H

#include <cstddef>
#include <cstdint>
#include <string_view>

enum class DisplayServer : uint8_t {
  kNone,       // no server answers
  kSimulated,  // what the other settings say
  kReal        // this machine's
};

struct DisplaySettings {
  DisplayServer server = DisplayServer::kNone;
  bool extension = true;  // the server knows DPMS
  // Which of the extension's requests succeed.
  bool capable = true;
  bool enable = true;
  bool getTimeouts = true;
  bool setTimeouts = true;
  bool forceLevel = true;
  // Seconds until standby, suspend and off; 0 is never.
  uint16_t timeouts[3] = {0, 0, 0};
};

// Lines "key = value"; ";" and "#" begin a comment. A key that is missing, or a value that means nothing, leaves
// the default.
DisplaySettings ParseDisplaySettings(std::string_view text);

// Writes the text with the key's value replaced, or the key added at the end, to `out`. Returns the length, or 0
// when `size` is too small.
size_t ReplaceDisplayValue(std::string_view text, std::string_view key, std::string_view value, char* out,
                           size_t size);

#endif
