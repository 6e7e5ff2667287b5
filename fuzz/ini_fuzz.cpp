// Any bytes as a settings file, and one write into it. The input is SECTION \0 KEY \0 VALUE \0 DOCUMENT.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "ini_document.h"
#include "ini_line.h"
#include "ini_value.h"

namespace {

void Require(bool holds) {
  if (!holds) abort();
}

std::string_view Take(std::string_view& input) {
  const size_t end = input.find('\0');
  const std::string_view part = input.substr(0, end);
  input.remove_prefix(end == std::string_view::npos ? input.size() : end + 1);
  return part;
}

// Every setting of one document has the same value in the other, but for the one that was written.
void RequireSameSettings(const IniDocument& from, const IniDocument& in, std::string_view section,
                         std::string_view key) {
  std::string_view current;
  for (IniLines lines(from.Bytes()); lines.Next();) {
    const IniLine& line = lines.Line();
    if (line.kind == IniLineKind::kSection) current = line.name;
    if (line.kind != IniLineKind::kSetting) continue;
    const bool written = IniSameName(current, IniTrim(section)) && IniSameName(line.name, IniTrim(key));
    Require(written || from.Get(current, line.name) == in.Get(current, line.name));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr size_t kEnough = 4096;  // the comparison takes quadratic time
  std::string_view input(reinterpret_cast<const char*>(data), size < kEnough ? size : kEnough);
  const std::string_view section = Take(input);
  const std::string_view key = Take(input);
  const std::string_view value = Take(input);

  const IniDocument before{std::string(input)};
  Require(before.Bytes() == input);
  IniDocument after = before;
  const auto had = before.Get(section, key);
  switch (after.Set(section, key, value)) {
    case IniChange::kNone:
      Require(had == value && after.Bytes() == before.Bytes());
      break;
    case IniChange::kRefused:
      Require(after.Bytes() == before.Bytes());
      break;
    case IniChange::kChanged:
      Require(had != value && after.Get(section, key) == value);
      RequireSameSettings(before, after, section, key);
      RequireSameSettings(after, before, section, key);
      Require(IniDocument(after).Set(section, key, value) == IniChange::kNone);
      // Put back, a replaced value leaves the settings as they were.
      if (had) {
        Require(after.Set(section, key, *had) == IniChange::kChanged);
        RequireSameSettings(before, after, {}, {});
      }
  }

  for (size_t room = 0; room <= value.size(); ++room) Require(IniCut(value, room) <= room);
  IniNumber(value);
  return 0;
}
