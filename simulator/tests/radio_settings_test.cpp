// hw/ra0/link.ini as a person writes it.
#include "radio_settings.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace {

std::string Show(std::string_view text) {
  const RadioSettings settings = ParseRadioSettings(text);
  std::string all = settings.associated ? "associated " : "alone ";
  all += std::string(settings.essid.Text()) + " ";
  all += settings.level ? std::to_string(*settings.level) : "-";
  all += settings.quality ? " " + std::to_string(*settings.quality) : " -";
  for (const int error : settings.errors) all += " " + std::to_string(error);
  return all + "; " + std::to_string(settings.resultsMs) + " ms WE-" + std::to_string(settings.form.version) +
         (settings.form.wide ? " 64 " : " 32 ") + std::to_string(settings.wantsBytes) +
         (settings.tellsLength ? " told " : " untold ") + std::to_string(static_cast<int>(settings.elements));
}

constexpr char kDefaults[] = "alone  - - 0 0 0 0 0 0 0; 0 ms WE-22 64 0 told 0";

TEST(RadioSettings, AreTheDefaultsForAnEmptyFile) {
  EXPECT_EQ(Show(""), kDefaults);
}

TEST(RadioSettings, SayAllThatAPersonMayWrite) {
  EXPECT_EQ(Show("[link]\nassociated = yes\nessid = Caf\xc3\xa9 1\nlevel = 196\nquality = 70\n"
                 "[driver]\nrange = EIO\nscan_type = EINVAL\nscan = EBUSY\nresults = EAGAIN\n"
                 "statistics = EOPNOTSUPP\nstatus = ENOTTY\nname = ENODEV\nresults_ms = 300\nversion = 16\n"
                 "layout = 32\nwants_bytes = 6000\ntells_length = no\nelements = texts"),
            "associated Caf\xc3\xa9 1 196 70 " + std::to_string(EIO) + " " + std::to_string(EINVAL) + " " +
                std::to_string(EBUSY) + " " + std::to_string(EAGAIN) + " " + std::to_string(EOPNOTSUPP) +
                " " + std::to_string(ENOTTY) + " " + std::to_string(ENODEV) +
                "; 300 ms WE-16 32 6000 untold 2");
  EXPECT_EQ(Show("[link]\nessid_hex = 41 42 ff"),
            std::string("alone AB\xff - - 0 0 0 0 0 0 0; 0 ms WE-22 64 0 told 0"));
}

TEST(RadioSettings, KeepTheDefaultForWhatMeansNothing) {
  EXPECT_EQ(Show("associated = yes\n[link]\nassociated = perhaps\nlevel =\nquality = a\nessid_hex = 4\n"
                 "[driver]\nscan = EODD\nresults_ms = -3\nversion = x\nlayout = 16\nwants_bytes = 1k\n"
                 "tells_length = 1\nelements = all\n[other]\nassociated = yes\nscan = EIO"),
            kDefaults);
}

TEST(RadioSettings, LetNobodyScanWhileItIsSwitchedOff) {
  const RadioSettings settings = ParseRadioSettings("[link]\nup = no\n[driver]\nresults = EIO\n");
  EXPECT_EQ(settings.Error(RadioRequest::kScan), ENETDOWN);
  EXPECT_EQ(settings.Error(RadioRequest::kResults), EIO);
  EXPECT_EQ(settings.Error(RadioRequest::kRange), 0);
  EXPECT_EQ(ParseRadioSettings("[link]\nup = yes\n").Error(RadioRequest::kScan), 0);
}

TEST(RadioSettings, LimitLargeNumbers) {
  EXPECT_EQ(Show("[link]\nlevel = 999\nquality = 101\n[driver]\nresults_ms = 99999999999\nversion = 300\n"
                 "wants_bytes = 99999999999"),
            "alone  255 100 0 0 0 0 0 0 0; 3600000 ms WE-255 64 4294967295 told 0");
}

}  // namespace
