// A key store of a test's own: two copies of 4 KiB in a folder of its own.
#ifndef ZQ_NVRAM_FIXTURE_H
#define ZQ_NVRAM_FIXTURE_H

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>
#include <vector>

#include "nvram.h"
#include "temp_dir.h"

constexpr size_t kCopySize = 0x1000;

class NvramTest : public testing::Test {
 protected:
  NvramTest() { Configure(first_ + " 0x0 0x1000\n" + second_ + " 0x0 0x1000\n"); }
  ~NvramTest() override { unsetenv("ZQ_NVRAM_CONFIG"); }

  void Configure(const std::string& text) {
    WriteFile(config_, text);
    setenv("ZQ_NVRAM_CONFIG", config_.c_str(), 1);
  }

  static bool CanOpen() { return nvram_close(nvram_open(0, 0)) == 0; }
  // Open, act, close. What the act returned; -1 when the store cannot be opened.
  static int Put(const std::string& key, const std::string& value) {
    const int handle = nvram_open(0, 0);
    const int result = handle < 0 ? -1 : nvram_write_key(handle, nullptr, key.c_str(), value.c_str());
    if (handle >= 0) nvram_close(handle);
    return result;
  }
  static int Erase(const std::string& key) {
    const int handle = nvram_open(0, 0);
    const int result = handle < 0 ? -1 : nvram_erase_key(handle, nullptr, key.c_str());
    if (handle >= 0) nvram_close(handle);
    return result;
  }
  // "(missing)" without the key, "(closed)" when the store cannot be opened.
  static std::string Value(const std::string& key) {
    const int handle = nvram_open(0, 0);
    if (handle < 0) return "(closed)";
    std::vector<char> buffer(0x10000);
    const int result = nvram_read_key(handle, nullptr, key.c_str(), buffer.data(), buffer.size());
    nvram_close(handle);
    return result == 0 ? buffer.data() : "(missing)";
  }

  TempDir folder_;
  const std::string first_ = folder_ / "first";
  const std::string second_ = folder_ / "second";
  const std::string config_ = folder_ / "fw_env.config";
};

#endif
