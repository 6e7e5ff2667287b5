// A ready profile: a folder that is copied to become a device's root.
//
// Its file profile.txt stays behind. It says what a plain folder under version control cannot:
//   about TEXT        what kind of device it is, for `zqsim profiles`
//   dir PATH MODE     a folder, empty or not, with that octal mode
// Empty lines and lines that begin with "#" say nothing.
#ifndef ZQSIM_PROFILE_H
#define ZQSIM_PROFILE_H

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct ProfileFolder {
  std::string path;  // relative, without ".."
  mode_t mode;
};

struct ProfileText {
  std::string about;
  std::vector<ProfileFolder> folders;
};

// Nothing, and in `error` the number of the line with what is wrong, when the text is no profile.txt.
std::optional<ProfileText> ParseProfile(std::string_view text, std::string& error);

// Names of the profiles in the folder, in the order of the alphabet.
std::vector<std::string> ProfileNames(const std::filesystem::path& profiles);

// Reads the profile.txt of a profile.
std::optional<ProfileText> ReadProfile(const std::filesystem::path& profile, std::string& error);

// Copies the profile into the folder, which exists and is empty. Its etc comes last: a device has an etc, so
// that a copy that was interrupted is none. False, and the reason with the path in `error`.
bool CopyProfile(const std::filesystem::path& profile, const std::filesystem::path& device,
                 std::string& error);

#endif
