#include "scan_fixture.h"

#include <iwlib.h>

#include <cstdlib>

#include "wireless_calls.h"

namespace {

std::string Hardware(const std::string& name) {
  return std::string(std::getenv("ZQ_DEVICE")) + "/hw/ra0/" + name;
}

}  // namespace

std::string FromHex(const std::string& hex) {
  std::string bytes;
  for (size_t i = 0; i + 1 < hex.size(); i += 2) {
    bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
  }
  return bytes;
}

Air& Air::Fixed(uint16_t command, const void* payload, size_t size) {
  uint8_t buffer[64];
  EventStream stream(buffer, sizeof buffer, form_);
  stream.Fixed(command, payload, size);
  bytes_.append(buffer, buffer + stream.Length());
  return *this;
}

Air& Air::Variable(uint16_t command, const std::string& payload, uint16_t flags) {
  std::vector<uint8_t> buffer(payload.size() + 64);
  EventStream stream(buffer.data(), buffer.size(), form_);
  stream.Variable(command, reinterpret_cast<const uint8_t*>(payload.data()), payload.size(), flags);
  bytes_.append(buffer.data(), buffer.data() + stream.Length());
  return *this;
}

Air& Air::Address() {
  const sockaddr address{1, {2, 0, 0, 0, 0, 1}};
  return Fixed(SIOCGIWAP, &address, sizeof address);
}

Air& Air::Name(const std::string& name, uint16_t flags) {
  return Variable(SIOCGIWESSID, name, flags);
}

Air& Air::Mode(uint32_t mode) {
  return Fixed(SIOCGIWMODE, &mode, sizeof mode);
}

Air& Air::Key(uint16_t flags, const std::string& key) {
  return Variable(SIOCGIWENCODE, key, flags);
}

Air& Air::Level(uint8_t level) {
  const iw_quality quality{50, level, 0, 7};
  return Fixed(IWEVQUAL, &quality, sizeof quality);
}

Air& Air::Frequency() {
  const iw_freq frequency{2437, 6, 0, 0};
  return Fixed(SIOCGIWFREQ, &frequency, sizeof frequency);
}

Air& Air::Rate() {
  const iw_param rates[2] = {{54000000, 1, 0, 0}, {11000000, 1, 0, 0}};
  return Fixed(SIOCGIWRATE, rates, sizeof rates);
}

Air& Air::Text(const std::string& text) {
  return Variable(IWEVCUSTOM, text, 0);
}

Air& Air::Elements(const std::string& bytes) {
  return Variable(IWEVGENIE, bytes, 0);
}

Air& Air::Other(uint16_t command) {
  const uint32_t nothing = 0;
  return Fixed(command, &nothing, sizeof nothing);
}

ScanTest::ScanTest() {
  SetRadio("");
  SetCells("");
  Traces();
  TakeWirelessCalls();
}

ScanTest::~ScanTest() {
  SetResults(std::nullopt);
  WaitForReal(false);
}

void ScanTest::SetRadio(const std::string& text) {
  WriteFile(Hardware("link.ini"), "[driver]\n" + text + "\n");
}

void ScanTest::SetCells(const std::string& text) {
  WriteFile(Hardware("cells.ini"), text);
}

std::string ScanTest::Scan(const char* essid, bool active) {
  EXPECT_EQ(network.getESSIDList(active, false, essid, false), network.essidList);
  return Show();
}

std::string ScanTest::ScanOf(const Air& air, const char* essid) {
  SetResults(air.Bytes());
  return Scan(essid);
}

std::string Show(const _ESSIDStruct& record) {
  std::string text = record.ESSID != nullptr ? record.ESSID : "(null)";
  text += " strength " + std::to_string(record.strength);
  if (record.encrypted != 0) text += " encrypted";
  if (record.WPAVersion != 0) text += " WPA " + std::to_string(record.WPAVersion);
  if (record.TKIP != 0) text += " TKIP";
  if (record.AES != 0) text += " AES";
  return text + "\n";
}

std::string ScanTest::Show() const {
  std::string all;
  const zq_List& list = *network.essidList;
  for (auto* position = list.First(); position != nullptr; position = list.Next(position)) {
    all += ::Show(*static_cast<const _ESSIDStruct*>(list.Record(position)));
  }
  return all;
}

std::string ScanTest::Traces() {
  const std::vector<std::string> texts = trace.Texts();
  std::string all;
  for (; seen_ < texts.size(); ++seen_) all += texts[seen_] + "\n";
  return all;
}

std::string ScanTest::EventTraces() {
  const std::string all = Traces();
  const std::string before = "ZQUtil Initiating Scan\n";
  const size_t at = all.find(before);
  return at == std::string::npos ? "" : all.substr(at + before.size());
}
