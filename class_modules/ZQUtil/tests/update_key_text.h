// The update key as the openssl command takes it.
#ifndef ZQUTIL_TESTS_UPDATE_KEY_TEXT_H
#define ZQUTIL_TESTS_UPDATE_KEY_TEXT_H

#include <cstdio>
#include <span>
#include <string>
#include <vector>

#include "UpdateKey.h"

inline std::string HexText(std::span<const uint8_t> bytes) {
  std::string text;
  for (const uint8_t byte : bytes) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02x", byte);
    text += digits;
  }
  return text;
}

// The command that encrypts ("-e") or decrypts ("-d") a package.
inline std::vector<std::string> OpenSslWords(const std::string& direction, const std::string& in,
                                             const std::string& out,
                                             const std::string& key = HexText(kUpdateKey)) {
  return {"openssl", "enc", direction, "-bf-cbc",          "-provider", "legacy", "-provider", "default",
          "-K",      key,   "-iv",     HexText(kUpdateIv), "-in",       in,       "-out",      out};
}

#endif
