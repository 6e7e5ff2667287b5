// Any bytes as the texts of the edition file and of the version files. The input is TEXT \0 PLATFORM.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "EditionZone.h"
#include "VersionTexts.h"
#include "number_text.h"

namespace {

void Require(bool holds) {
  if (!holds) abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::string text(input.substr(0, input.find('\0')));
  const std::string platform(input.substr(input.size() > text.size() ? text.size() + 1 : text.size()));
  Require(std::string_view(ZoneOfEdition(input)).starts_with("/usr/share/zoneinfo/"));

  const std::string_view line = VersionLine(text);
  Require(text.starts_with(line) && line.find_first_of("\n\r\t") == std::string_view::npos);
  Require(platform.ends_with(PlatformVersionLine(platform)));
  const int32_t number = DecimalNumber(text.c_str());
  const std::string firmware = FirmwareVersionText(text, number, number);
  Require(firmware.starts_with(line) && firmware.size() <= line.size() + 48);
  Require(FirmwareVersionText(std::nullopt, number, number).empty());
  const std::string software = SoftwareVersionText(text, platform);
  Require(line.empty() ? software == platform : software.size() == line.size() + platform.size() + 3);
  return 0;
}
