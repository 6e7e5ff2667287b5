#include "mixer_file.h"

#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <mutex>
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

// One state of the file.
struct Card {
  bool present = false;
  std::array<std::optional<MixerElement>, kElements> elements;
};

Card ReadCard(const std::string& file) {
  Card card;
  card.present =
      access(file.c_str(), R_OK) == 0 && zq_GetINIFileAffirmative("card", "present", "yes", file.c_str());
  if (!card.present) return card;
  for (size_t i = 0; i < kElements; ++i) {
    const char* const section = kElementNames[i];
    card.elements.at(i) = ParseElement({Text(file, section, "type"), Text(file, section, "min"),
                                        Text(file, section, "max"), Text(file, section, "value")});
  }
  return card;
}

int64_t Nanoseconds(const timespec& time) {
  return int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

bool IsSameState(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
         Nanoseconds(a.st_mtim) == Nanoseconds(b.st_mtim) && Nanoseconds(a.st_ctim) == Nanoseconds(b.st_ctim);
}

// Whether whatever changes the file from now on shows in its times, which move in steps of the system's clock.
bool IsSettled(const struct stat& status) {
  constexpr int64_t kLongestStep = 100'000'000;
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return Nanoseconds(now) - Nanoseconds(status.st_ctim) > kLongestStep;
}

// The card as the file has it now. The sound library asks a dozen times about what it does once, so a file that has
// not changed is not read again.
Card CardNow() {
  static std::mutex mutex;
  static constexpr struct stat kUnknown {};
  static struct stat known {};
  static Card card;
  const std::string file = FilePath();
  struct stat status {};
  if (file.empty() || stat(file.c_str(), &status) != 0) return {};
  const std::lock_guard lock(mutex);
  if (IsSameState(status, known)) return card;
  card = ReadCard(file);
  known = IsSettled(status) ? status : kUnknown;
  return card;
}

}  // namespace

bool CardIsPresent() {
  return CardNow().present;
}

std::optional<MixerElement> ReadElement(size_t element) {
  return CardNow().elements.at(element);
}

bool StoreValues(size_t element, const ChannelValues& values) {
  return zq_WriteINIFileString(kElementNames[element], "value", ChannelText(values).c_str(),
                               FilePath().c_str(), false);
}
