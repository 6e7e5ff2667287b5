// The light sensor: what it answers to block transfers on its one command, over plain values.
//
// A block is its length, then that many bytes. A write of four bytes starts a measurement. A read gives four:
// status, reading low, reading high, 0. Until the measurement is done the status is "busy" and the reading
// that of the measurement before.
#ifndef ZQSIM_LIGHT_CHIP_H
#define ZQSIM_LIGHT_CHIP_H

#include <cstdint>

constexpr uint8_t kLightMeasure = 0x27;  // the command
constexpr uint8_t kLightBlockLength = 4;
constexpr uint8_t kLightReady = 0x87;
constexpr uint8_t kLightBusy = 0x07;

// Whether the chip takes this block: its length is in the first byte.
constexpr bool StartsMeasurement(const uint8_t* block) {
  return block[0] == kLightBlockLength;
}

// Writes the five bytes of an answer.
constexpr void AnswerLight(bool ready, uint16_t reading, uint8_t* block) {
  block[0] = kLightBlockLength;
  block[1] = ready ? kLightReady : kLightBusy;
  block[2] = static_cast<uint8_t>(reading & 0xFF);
  block[3] = static_cast<uint8_t>(reading >> 8);
  block[4] = 0;
}

#endif
