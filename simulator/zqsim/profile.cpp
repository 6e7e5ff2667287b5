#include "profile.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>
#include <sstream>
#include <system_error>

namespace fs = std::filesystem;

namespace {

constexpr const char* kText = "profile.txt";

bool IsInside(const fs::path& path) {
  return !path.empty() && path.is_relative() && std::find(path.begin(), path.end(), "..") == path.end();
}

bool ParseMode(const std::string& text, mode_t& mode) {
  unsigned value = 0;
  const char* const end = text.data() + text.size();
  const auto parsed = std::from_chars(text.data(), end, value, 8);
  mode = value;
  return parsed.ec == std::errc() && parsed.ptr == end && value <= 07777;
}

bool Failed(const std::error_code& why, const fs::path& where, std::string& error) {
  if (why) error = where.string() + ": " + why.message();
  return static_cast<bool>(why);
}

// Regular files, folders and symbolic links; the owner may write all of them, whatever an installation made
// of them.
bool CopyEntry(const fs::path& from, const fs::path& to, std::string& error) {
  std::error_code why;
  fs::copy(from, to, fs::copy_options::recursive | fs::copy_options::copy_symlinks, why);
  if (Failed(why, to, error)) return false;
  const auto writable = [](const fs::path& path, std::error_code& result) {
    if (!fs::is_symlink(path, result)) {
      fs::permissions(path, fs::perms::owner_write, fs::perm_options::add, result);
    }
  };
  writable(to, why);
  if (!why && fs::is_directory(to)) {
    for (fs::recursive_directory_iterator it(to, why), end; !why && it != end; it.increment(why)) {
      writable(it->path(), why);
    }
  }
  return !Failed(why, to, error);
}

}  // namespace

std::optional<ProfileText> ParseProfile(std::string_view text, std::string& error) {
  ProfileText profile;
  std::istringstream lines{std::string(text)};
  std::string line;
  for (int number = 1; std::getline(lines, line); ++number) {
    std::istringstream words(line);
    std::string word;
    if (!(words >> word) || word.starts_with('#')) continue;
    if (word == "about") {
      std::getline(words >> std::ws, profile.about);
      continue;
    }
    ProfileFolder folder{};
    std::string mode;
    std::string more;
    const bool known = word == "dir" && (words >> folder.path >> mode) && !(words >> more);
    if (!known || !IsInside(folder.path) || !ParseMode(mode, folder.mode)) {
      error = "line " + std::to_string(number) + ": " + line;
      return std::nullopt;
    }
    profile.folders.push_back(std::move(folder));
  }
  return profile;
}

std::vector<std::string> ProfileNames(const fs::path& profiles) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator it(profiles, error), end; !error && it != end; it.increment(error)) {
    if (fs::exists(it->path() / kText, error)) names.push_back(it->path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::optional<ProfileText> ReadProfile(const fs::path& profile, std::string& error) {
  std::ifstream file(profile / kText);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file) {
    error = (profile / kText).string() + ": cannot be read";
    return std::nullopt;
  }
  auto parsed = ParseProfile(text, error);
  if (!parsed) error = (profile / kText).string() + ", " + error;
  return parsed;
}

bool CopyProfile(const fs::path& profile, const fs::path& device, std::string& error) {
  const auto text = ReadProfile(profile, error);
  if (!text) return false;
  std::error_code why;
  std::vector<fs::path> entries;
  for (fs::directory_iterator it(profile, why), end; !why && it != end; it.increment(why)) {
    if (it->path().filename() != kText) entries.push_back(it->path());
  }
  if (Failed(why, profile, error)) return false;
  std::partition(entries.begin(), entries.end(),
                 [](const fs::path& entry) { return entry.filename() != "etc"; });

  for (const ProfileFolder& folder : text->folders) {
    const fs::path path = device / folder.path;
    fs::create_directories(path, why);
    if (!why) fs::permissions(path, static_cast<fs::perms>(folder.mode), why);
    if (Failed(why, path, error)) return false;
  }
  for (const fs::path& entry : entries) {
    if (!CopyEntry(entry, device / entry.filename(), error)) return false;
  }
  return true;
}
