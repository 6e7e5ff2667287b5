#include "places.h"

#include <system_error>

namespace fs = std::filesystem;

Places FindPlaces() {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  Places places;
  places.prefix = program.parent_path().parent_path();
  places.shim = places.prefix / "lib" / "libzqsim.so";
  if (!fs::exists(places.shim, error)) places.shim = places.prefix / ZQSIM_LIBRARY_FOLDER / "libzqsim.so";
  const fs::path ofEachWord = ZQSIM_PRELOAD_FOLDER;
  places.preload = ofEachWord.empty() ? places.shim : places.prefix / ofEachWord / places.shim.filename();
  places.mixer = places.shim.parent_path() / "libasound_module_ctl_zqsim.so";
  places.sound = places.prefix / "share" / "zqutil" / "asound.conf";
  places.system = places.prefix / "libexec" / "zqutil";
  if (!fs::exists(places.system, error)) places.system = places.prefix / ZQSIM_SYSTEM_FOLDER;
  places.board = places.prefix / "share" / "zqutil" / "simulated-board.sh";
  places.profiles = places.prefix / "share" / "zqutil" / "profiles";
  return places;
}
