// Where the copies of the key store are: the lines "path offset size ..." of a fw_env.config file.
#ifndef ZQ_NVRAM_STORE_CONFIG_H
#define ZQ_NVRAM_STORE_CONFIG_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct CopyPlace {
  std::string path;
  int64_t offset;  // bytes; below 0 from the end of a block device
  size_t size;     // bytes
};

struct StoreConfig {
  std::vector<CopyPlace> copies;  // two, or one that has no redundancy

  bool Redundant() const { return copies.size() == 2; }
};

// $ZQ_NVRAM_CONFIG, else /etc/fw_env.config.
std::string StoreConfigPath();

// Fills `config`; returns why it cannot, or "". Comments, blank lines and whatever follows the second copy
// are passed over; so is a line that makes no sense, as other readers of the file do, unless a copy is
// missing then.
std::string ParseStoreConfig(std::string_view text, StoreConfig& config);

// The same for a file; the reason names it.
std::string ReadStoreConfig(const std::string& path, StoreConfig& config);

#endif
