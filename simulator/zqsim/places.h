// Where the tool's own files are: beside the program, in the build folder as after installation.
#ifndef ZQSIM_PLACES_H
#define ZQSIM_PLACES_H

#include <filesystem>

struct Places {
  std::filesystem::path prefix;    // holds bin, the libraries and share
  std::filesystem::path shim;      // the preloaded library
  std::filesystem::path preload;   // the same as the loader is told: where programs are of two words, by $LIB
  std::filesystem::path mixer;     // the sound library's plugin, beside it
  std::filesystem::path sound;     // the sound library's configuration, which names the plugin
  std::filesystem::path system;    // the folder of the device's system scripts
  std::filesystem::path board;     // how these act on a simulated device
  std::filesystem::path profiles;  // a folder for each ready profile
};

Places FindPlaces();

#endif
