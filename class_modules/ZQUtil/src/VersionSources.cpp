#include "VersionSources.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include "DeviceFile.h"
#include "VersionTexts.h"
#include "ZQUtilTrace.h"
#include "number_text.h"
#include "script_values.h"
#include "zq_system.h"

namespace {

constexpr char kBoardRevisionFile[] = "/proc/boardrev";
constexpr char kFirmwareFile[] = "/etc/firmware.ver";
constexpr char kSoftwareFile[] = "/etc/software.ver";

// The number of the file's first line; 0 when it is missing or empty.
int32_t ReadBoardRevision() {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(kBoardRevisionFile, "re"),
                                                             std::fclose);
  if (file == nullptr) return 0;
  char line[256] = {};
  if (std::fgets(line, sizeof line, file.get()) == nullptr) {
    ZQUTIL_TRACE("ZQUtil /proc.boardrev has no content\n");
    return 0;
  }
  line[std::strcspn(line, "\n")] = '\0';
  ZQUTIL_TRACE("ZQUtil read /proc.boardrev: %s\n", line);
  return DecimalNumber(line);
}

}  // namespace

void SetVersionProperties(void* object, int32_t deviceId) {
  const int32_t boardRevision = ReadBoardRevision();
  const std::string firmware = FirmwareVersionText(ReadDeviceFile(kFirmwareFile), boardRevision, deviceId);
  SetTextProperty(object, "Firmware", firmware.c_str());
  ZQUTIL_TRACE("ZQUtil Firmware Version %s\n", firmware.c_str());

  char platform[1024] = {};
  zqOS_GetVersion(platform, sizeof platform);
  const std::string software =
      SoftwareVersionText(ReadDeviceFile(kSoftwareFile), PlatformVersionLine(platform));
  SetTextProperty(object, "Software", software.c_str());
  ZQUTIL_TRACE("ZQUtil Software Version %s\n", software.c_str());
}
