// The key store while it is open, with its lock held. One thread at a time.
#ifndef ZQ_NVRAM_STORE_H
#define ZQ_NVRAM_STORE_H

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "file_lock.h"
#include "store_config.h"

struct uboot_ctx;

class Store {
 public:
  // Waits for the lock, mends the copies and reads them. Null, and `why`, when the store cannot be opened.
  static std::unique_ptr<Store> Open(const std::string& configPath, std::string& why);
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;
  ~Store();

  std::optional<std::string> Get(const std::string& key) const;
  // Key and value pairs in the order of the keys.
  std::vector<std::pair<std::string, std::string>> List() const;
  // On the disk when it returns. Returns why it cannot, the old value kept, or "". A value that the key has
  // already is not written again: flash wears.
  std::string Set(const std::string& key, const std::string& value);
  // The same for removal; a key that is not there needs none.
  std::string Erase(const std::string& key);

 private:
  Store(const std::string& configPath, StoreConfig config);
  std::string Load(const std::string& configPath);
  std::string Reload();
  std::string Write(const std::string& key, const char* value);
  bool Fits(const std::string& key, const char* value, size_t flagsRoom) const;

  FileLock turn_;
  StoreConfig config_;
  uboot_ctx* context_ = nullptr;
  bool written_ = false;  // since it was read
};

#endif
