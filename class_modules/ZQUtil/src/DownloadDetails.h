// The download in progress. It belongs to the thread that begins the download until the connection is begun, then to
// the library's thread that calls back; nobody else looks at it.
#ifndef ZQUTIL_DOWNLOAD_DETAILS_H
#define ZQUTIL_DOWNLOAD_DETAILS_H

#include <cstdint>
#include <cstdio>

struct DownloadDetails {
  std::FILE* stream = nullptr;  // the package that is written
  char fileName[4096] = {};     // its path; after decryption that of the decrypted package
  char activeRfs[128] = {};
  char standbyRfs[128] = {};
  int32_t bootloaderVersion = 0;
  int32_t numParts = 0;
  bool updateSupported = false;
  bool encrypted = false;
  bool (*installRoutine)() = nullptr;  // null: none chosen
  bool applied = false;                // the install succeeded, as far as the device can tell
  int32_t received = 0;                // bytes
};

extern DownloadDetails sDownloadDetails;

#endif
