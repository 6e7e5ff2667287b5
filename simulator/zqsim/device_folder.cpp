#include "device_folder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>

#include "profile.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kMarker = ".zq-device";

// The exclusive right to make this folder a device, as long as the object lives.
class Turn {
 public:
  explicit Turn(const fs::path& folder)
      : descriptor_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    while (descriptor_ >= 0 && flock(descriptor_, LOCK_EX) != 0 && errno == EINTR) {
    }
  }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;
  ~Turn() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  bool Has() const { return descriptor_ >= 0; }

 private:
  int descriptor_;
};

bool IsDevice(const fs::path& folder) {
  std::error_code error;
  return fs::exists(folder / kMarker, error) || fs::is_directory(folder / "etc", error);
}

bool Fail(const fs::path& folder, const std::string& what, std::string& error) {
  error = folder.string() + ": " + what;
  return false;
}

bool FillFolder(const fs::path& folder, const fs::path& profile, std::string& error) {
  if (CopyProfile(profile, folder, error)) {
    std::ofstream marker(folder / kMarker);
    marker << profile.filename().string() << '\n';
    if (marker.flush()) return true;
    error = (folder / kMarker).string() + ": cannot be written";
  }
  error = "cannot make the device: " + error;
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(folder, ignored)) fs::remove_all(entry.path(), ignored);
  return false;
}

}  // namespace

bool PrepareDevice(const fs::path& folder, const fs::path& profile, fs::path& root, std::string& error) {
  std::error_code why;
  if (!fs::is_directory(folder, why)) {
    if (fs::exists(folder, why)) return Fail(folder, "is no folder, so it cannot be a device", error);
    fs::create_directories(folder, why);
    if (why) return Fail(folder, "cannot make the device: " + why.message(), error);
  }
  root = fs::canonical(folder, why);
  if (why) return Fail(folder, why.message(), error);
  if (root == "/") return Fail(folder, "is the machine itself, not a device", error);
  if (access(root.c_str(), R_OK | W_OK | X_OK) != 0) {
    return Fail(folder, std::string("cannot write to the device: ") + strerror(errno), error);
  }
  const Turn turn(root);
  if (!turn.Has()) return Fail(folder, strerror(errno), error);
  if (IsDevice(root)) return true;
  if (!fs::is_empty(root, why)) {
    return Fail(folder, "is no device (it has neither .zq-device nor etc) and not empty", error);
  }
  return FillFolder(root, profile, error);
}

std::string ProfileOf(const fs::path& root) {
  std::string name;
  std::ifstream(root / kMarker) >> name;
  return name;
}
