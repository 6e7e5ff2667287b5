// The power methods of the script class, over the battery driver's files.
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "PowerStatus.h"
#include "ZQUtil.h"
#include "ZQUtilTrace.h"
#include "number_text.h"
#include "script_values.h"

namespace {

constexpr char kChargeFile[] = "/sys/class/hwmon/hwmon5/device/mrst_batmon/charge";
constexpr char kVoltageFile[] = "/sys/class/hwmon/hwmon5/device/mrst_batmon/vbat";

}  // namespace

int32_t ZQUtil::GetIntValueFromFileContents(const char* path) {
  ZQUTIL_TRACE("GUI call to GetIntFileFromContents\n");
  if (path == nullptr) {
    ZQUTIL_TRACE("No Filename Supplied to GetIntValueFromFileContents\n");
    return 0;
  }
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path, "re"), std::fclose);
  if (file == nullptr) {
    ZQUTIL_TRACE("Could not open file %s\n", path);
    return 0;
  }
  char line[255] = {};
  const char* const read = std::fgets(line, sizeof line, file.get());
  const int32_t number = read != nullptr ? DecimalNumber(read) : 0;
  ZQUTIL_TRACE("Value from file %s is %d\n", path, number);
  return number;
}

int32_t ZQUtil::IsTablet(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  ReturnString("no", rval);
  return 1;
}

int32_t ZQUtil::BatteryPct(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  const int32_t voltage = GetIntValueFromFileContents(kVoltageFile);
  ZQUTIL_TRACE("Calculating Battery Percent for %d\n", voltage);
  const int32_t percent = BatteryPercentOf(voltage);
  ZQUTIL_TRACE("Percent is %d\n", percent);
  ReturnInteger(percent, rval);
  return 1;
}

int32_t ZQUtil::ChargeStatus(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  const int32_t driverValue = GetIntValueFromFileContents(kChargeFile);
  ZQUTIL_TRACE("Charge Status is %d\n", driverValue);
  const ChargeState state = ChargeStateOf(driverValue);
  ZQUTIL_TRACE("%s", state.trace);
  ReturnString(state.name, rval);
  return 1;
}
