// A folder of a test's own, removed with all that is in it.
#ifndef ZQ_TEST_TEMP_DIR_H
#define ZQ_TEST_TEMP_DIR_H

#include <filesystem>
#include <string>

class TempDir {
 public:
  // Below the system's folder for such, or below `parent`.
  TempDir();
  explicit TempDir(const std::filesystem::path& parent);
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  ~TempDir();

  const std::filesystem::path& Path() const { return path_; }
  // The path of a name in the folder.
  std::string operator/(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

// The whole file, or "" when it cannot be read.
std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& bytes);
// Returns in another tick of the clock by which the system dates files: what is written from now on differs by its date
// from whatever was written before.
void AwaitFileTick();

#endif
