#include "mixer_file.h"

#include <unistd.h>

#include <cstdlib>
#include <string>

#include "zq_ini.h"

namespace {

std::string FilePath() {
  const char* const device = std::getenv("ZQ_DEVICE");
  return device == nullptr ? "" : std::string(device) + "/hw/mixer.ini";
}

std::string Text(const std::string& file, const char* section, const char* key) {
  char text[128] = {};
  zq_GetINIFileString(section, key, "", text, sizeof text - 1, file.c_str());
  return text;
}

}  // namespace

bool CardIsPresent() {
  const std::string file = FilePath();
  return !file.empty() && access(file.c_str(), R_OK) == 0 &&
         zq_GetINIFileAffirmative("card", "present", "yes", file.c_str());
}

std::optional<MixerElement> ReadElement(size_t element) {
  if (!CardIsPresent()) return std::nullopt;
  const std::string file = FilePath();
  const char* const section = kElementNames[element];
  return ParseElement({Text(file, section, "type"), Text(file, section, "min"), Text(file, section, "max"),
                       Text(file, section, "value")});
}

bool StoreValues(size_t element, const ChannelValues& values) {
  return zq_WriteINIFileString(kElementNames[element], "value", ChannelText(values).c_str(),
                               FilePath().c_str(), false);
}
