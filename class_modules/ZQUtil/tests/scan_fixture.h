// Scans on a simulated device, each of whose calls and traces a test sees.
#ifndef ZQUTIL_TESTS_SCAN_FIXTURE_H
#define ZQUTIL_TESTS_SCAN_FIXTURE_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ZQNetwork.h"
#include "event_stream.h"
#include "trace_capture.h"

// Scan results as a test spells them.
class Air {
 public:
  explicit Air(StreamForm form = {}) : form_(form) {}
  Air& Address();
  Air& Name(const std::string& name, uint16_t flags = 1);
  Air& Mode(uint32_t mode);
  Air& Key(uint16_t flags, const std::string& key = "");
  Air& Level(uint8_t level);
  Air& Frequency();
  Air& Rate();
  Air& Text(const std::string& text);
  Air& Elements(const std::string& bytes);
  Air& Other(uint16_t command);
  const std::string& Bytes() const { return bytes_; }

 private:
  Air& Fixed(uint16_t command, const void* payload, size_t size);
  Air& Variable(uint16_t command, const std::string& payload, uint16_t flags);

  StreamForm form_;
  std::string bytes_;
};

constexpr uint32_t kMaster = 3;
constexpr uint32_t kAdHoc = 1;
constexpr uint16_t kKeyOff = 0x8000;
constexpr uint16_t kKeyOn = 0x0800;

std::string FromHex(const std::string& hex);

class ScanTest : public testing::Test {
 protected:
  ScanTest();
  ~ScanTest() override;

  static void SetRadio(const std::string& text);
  static void SetCells(const std::string& text);

  // A scan, and the list as Show has it.
  std::string Scan(const char* essid = nullptr, bool active = true);
  // A scan whose results are these.
  std::string ScanOf(const Air& air, const char* essid = nullptr);
  // A line for each network: "NAME strength N" and what it has of "encrypted", "WPA n", "TKIP", "AES".
  std::string Show() const;
  // The traces since the last time, each with its line break.
  std::string Traces();
  // Those from the first event on.
  std::string EventTraces();

  TraceCapture trace;
  ZQNetwork network{true};

 private:
  size_t seen_ = 0;
};

std::string Show(const _ESSIDStruct& record);

#endif
