#include "TimeZoneTable.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <string_view>

constexpr TimeZoneRow tztable[kTimeZoneRows] = {
    {"/usr/share/zoneinfo/Australia/Adelaide", "(GMT+09:30) Adelaide"},
    {"/usr/share/zoneinfo/US/Alaska", "(GMT-09:00) Alaska"},
    {"/usr/share/zoneinfo/Asia/Almaty", "(GMT+06:00) Almaty, Novesibirsk"},
    {"/usr/share/zoneinfo/Asia/Amman", "(GMT+02:00) Amman"},
    {"/usr/share/zoneinfo/Europe/Amsterdam", "(GMT+01:00) Amsterdam, Berlin, Bern, Rome, Stockholm, Vienna"},
    {"/usr/share/zoneinfo/US/Arizona", "(GMT-07:00) Arizona"},
    {"/usr/share/zoneinfo/Europe/Athens", "(GMT+02:00) Athens, Bucharest, Istanbul"},
    {"/usr/share/zoneinfo/Canada/Atlantic", "(GMT-04:00) Atlantic Time (Canada)"},
    {"/usr/share/zoneinfo/Atlantic/Azores", "(GMT-01:00) Azores"},
    {"/usr/share/zoneinfo/Asia/Baghdad", "(GMT+03:00) Baghdad"},
    {"/usr/share/zoneinfo/Asia/Baku", "(GMT+04:00) Baku"},
    {"/usr/share/zoneinfo/Asia/Bangkok", "(GMT+07:00) Bangkok, Hanoi, Jakarta"},
    {"/usr/share/zoneinfo/Europe/Belgrade", "(GMT+01:00) Belgrade, Bratislava, Budapest, Ljubljana, Prague"},
    {"/usr/share/zoneinfo/Asia/Beirut", "(GMT+02:00) Beirut"},
    {"/usr/share/zoneinfo/America/Bogota", "(GMT-05:00) Bogota, Lima, Quito, Rio Branco"},
    {"/usr/share/zoneinfo/Australia/Brisbane", "(GMT+10:00) Brisbane"},
    {"/usr/share/zoneinfo/Brazil/DeNoronha", "(GMT-02:00) Fernando de Noronha"},
    {"/usr/share/zoneinfo/Brazil/East",
     "(GMT-03:00) Sao Paulo, Rio, Brasilia, Minas Gerais, North East Region, South Region"},
    {"/usr/share/zoneinfo/Brazil/West", "(GMT-04:00) West Region"},
    {"/usr/share/zoneinfo/Brazil/Acre", "(GMT-05:00) Acre"},
    {"/usr/share/zoneinfo/Europe/Brussels", "(GMT+01:00) Brussels, Copenhagen, Madrid, Paris"},
    {"/usr/share/zoneinfo/America/Buenos_Aires", "(GMT-03:00) Buenos Aires, Georgetown"},
    {"/usr/share/zoneinfo/Africa/Cairo", "(GMT+02:00) Cairo"},
    {"/usr/share/zoneinfo/Asia/Calcutta", "(GMT+05:30) Chennai, Kolkata, Mumbai, New Delhi"},
    {"/usr/share/zoneinfo/Australia/Canberra", "(GMT+10:00) Canberra, Melbourne, Sydney"},
    {"/usr/share/zoneinfo/Atlantic/Cape_Verde", "(GMT+05:30) Cape Verde Is."},
    {"/usr/share/zoneinfo/America/Caracas", "(GMT-04:30) Caracas"},
    {"/usr/share/zoneinfo/US/Central", "(GMT-06:00) Central Time (US & Canada)"},
    {"/usr/share/zoneinfo/America/Chihuahua", "(GMT-07:00) Chihuahua, La Paz, Mazaltan"},
    {"/usr/share/zoneinfo/Asia/Dacca", "(GMT+06:00) Astana, Dhaka"},
    {"/usr/share/zoneinfo/Australia/Darwin", "(GMT+09:30) Darwin"},
    {"/usr/share/zoneinfo/US/East-Indiana", "(GMT-05:00) Indiana (East)"},
    {"/usr/share/zoneinfo/US/Eastern", "(GMT-05:00) Eastern Time (US & Canada)"},
    {"/usr/share/zoneinfo/GMT", "(GMT+00:00) Greenwich Mean Time: Dublin, Edinburgh, Lisbon, London"},
    {"/usr/share/zoneinfo/GB", "(BST+01:00) British Summer Time"},
    {"/usr/share/zoneinfo/Etc/GMT+5", "(GMT+05:00) Islamabad, Karachi, Tashkent"},
    {"/usr/share/zoneinfo/America/Guatemala", "(GMT-06:00) Guadalajara, Mexico City, Monterrey"},
    {"/usr/share/zoneinfo/Africa/Harare", "(GMT+02:00) Harare, Pretoria"},
    {"/usr/share/zoneinfo/US/Hawaii", "(GMT-10:00) Hawaii"},
    {"/usr/share/zoneinfo/Europe/Helsinki", "(GMT+02:00) Helsinki, Kyiv, Riga, Sofia, Tallin, Vilnius"},
    {"/usr/share/zoneinfo/Australia/Hobart", "(GMT+10:00) Hobart"},
    {"/usr/share/zoneinfo/Asia/Hong_Kong", "(GMT+08:00) Beijing, Chongqing, Hong Kong, Urumqi"},
    {"/usr/share/zoneinfo/Asia/Irkutsk", "(GMT+08:00) Irkutsk, Ulaan Bataar"},
    {"/usr/share/zoneinfo/Asia/Jerusalem", "(GMT+02:00) Jerusalem"},
    {"/usr/share/zoneinfo/Asia/Kabul", "(GMT+04:30) Kabul"},
    {"/usr/share/zoneinfo/Asia/Katmandu", "(GMT+05:45) Kathmandu"},
    {"/usr/share/zoneinfo/Asia/Krasnoyarsk", "(GMT+07:00) Krasnoyarsk"},
    {"/usr/share/zoneinfo/Asia/Kuwait", "(GMT+03:00) Kuwait, Riyadh"},
    {"/usr/share/zoneinfo/America/Manaus", "(GMT-04:00) Manaus"},
    {"/usr/share/zoneinfo/Pacific/Midway", "(GMT-11:00) Midway Island, Samoa"},
    {"/usr/share/zoneinfo/Europe/Minsk", "(GMT+02:00) Minsk"},
    {"/usr/share/zoneinfo/Europe/Moscow", "(GMT+03:00) Moscow, St. Petersburg, Volgograd"},
    {"/usr/share/zoneinfo/America/Monterrey", "(GMT-06:00) Central America"},
    {"/usr/share/zoneinfo/America/Montevideo", "(GMT-03:00) Montevideo"},
    {"/usr/share/zoneinfo/US/Mountain", "(GMT-07:00) Mountain Time (US & Canada)"},
    {"/usr/share/zoneinfo/Asia/Muscat", "(GMT+04:00) Abu Dhabi, Muscat"},
    {"/usr/share/zoneinfo/Africa/Nairobi", "(GMT+03:30) Nairobi"},
    {"/usr/share/zoneinfo/Canada/Newfoundland", "(GMT-03:30) Newfoundland"},
    {"/usr/share/zoneinfo/US/Pacific", "(GMT-08:00) Pacific Time (US & Canada)"},
    {"/usr/share/zoneinfo/America/Panama", "(GMT-05:00) Panama"},
    {"/usr/share/zoneinfo/Australia/Perth", "(GMT+08:00) Perth"},
    {"/usr/share/zoneinfo/Asia/Rangoon", "(GMT+06:30) Yangon (Rangoon)"},
    {"/usr/share/zoneinfo/America/Santiago", "(GMT-04:00) Santiago"},
    {"/usr/share/zoneinfo/Europe/Sarajevo", "(GMT+01:00) Sarajevo, Skopje, Warsaw, Zagreb"},
    {"/usr/share/zoneinfo/Canada/Saskatchewan", "(GMT-06:00) Saskatchewan"},
    {"/usr/share/zoneinfo/Asia/Singapore", "(GMT+08:00) Kuala Lumpur, Singapore"},
    {"/usr/share/zoneinfo/Asia/Seoul", "(GMT+09:00) Seoul"},
    {"/usr/share/zoneinfo/Asia/Taipei", "(GMT+08:00) Taipei"},
    {"/usr/share/zoneinfo/Asia/Tehran", "(GMT+03:30) Tehran"},
    {"/usr/share/zoneinfo/Asia/Tbilisi", "(GMT+03:00) Tbilisi"},
    {"/usr/share/zoneinfo/America/Tijuana", "(GMT-08:00) Tijuana, Baja California"},
    {"/usr/share/zoneinfo/Asia/Tokyo", "(GMT+09:00) Osaka, Sapporo, Tokyo"},
    {"/usr/share/zoneinfo/Africa/Windhoek", "(GMT+02:00) Windhoek"},
    {"/usr/share/zoneinfo/Asia/Yakutsk", "(GMT+09:00) Yakutsk"},
    {"/usr/share/zoneinfo/Asia/Dubai", "(GMT+04:00) Dubai, UAE"},
    {"/usr/share/zoneinfo/Asia/Yerevan", "(GMT+04:00) Yerevan"},
};

namespace {

// All paths begin with the folder.
constexpr size_t kBegin = sizeof kZoneFolder;
static_assert(std::ranges::all_of(tztable, [](const TimeZoneRow& row) {
  return std::string_view(row.path).starts_with(kZoneFolder) && row.path[kBegin - 1] == '/';
}));

constexpr std::array<uint8_t, kTimeZoneRows> kLengths = [] {
  std::array<uint8_t, kTimeZoneRows> lengths{};
  std::ranges::transform(tztable, lengths.begin(), [](const TimeZoneRow& row) {
    return static_cast<uint8_t>(std::string_view(row.path).size() - kBegin);
  });
  return lengths;
}();

// Below the folder.
constexpr std::string_view PathOf(uint8_t row) {
  return {tztable[row].path + kBegin, kLengths[row]};
}

using RowNumbers = std::array<uint8_t, kTimeZoneRows>;

constexpr RowNumbers SortedByPath() {
  RowNumbers rows{};
  std::iota(rows.begin(), rows.end(), uint8_t{0});
  std::ranges::sort(rows, {}, PathOf);
  return rows;
}

// A walk asks for each file of the zoneinfo tree, which are many more than there are rows.
constexpr RowNumbers kByPath = SortedByPath();
static_assert(std::ranges::adjacent_find(kByPath, {}, PathOf) == kByPath.end(), "no path has two rows");

}  // namespace

const TimeZoneRow* FindTimeZoneRow(const char* path) {
  const std::string_view whole(path);
  if (!whole.starts_with(kZoneFolder) || path[kBegin - 1] != '/') return nullptr;
  const std::string_view below = whole.substr(kBegin);
  const auto* const found = std::ranges::lower_bound(kByPath, below, {}, PathOf);
  return found != kByPath.end() && PathOf(*found) == below ? &tztable[*found] : nullptr;
}

bool TimeZonesBelow(const char* folder) {
  const size_t length = std::strlen(folder);
  for (const TimeZoneRow& row : tztable) {
    if (std::strncmp(row.path, folder, length) == 0 && row.path[length] == '/') return true;
  }
  return false;
}
