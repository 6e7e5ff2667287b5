// The key store while it is open, with its lock held. One thread at a time.
#ifndef ZQ_NVRAM_STORE_H
#define ZQ_NVRAM_STORE_H

#include <memory>
#include <optional>
#include <string>

#include "copy_image.h"
#include "file_lock.h"
#include "library_context.h"
#include "store_config.h"

class Store {
 public:
  // Waits for the lock, mends the copies and reads them. Null, and `why`, when the store cannot be opened.
  static std::unique_ptr<Store> Open(const std::string& configPath, std::string& why);
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;
  ~Store() = default;

  std::optional<std::string> Get(const std::string& key) const;
  Entries List() const;
  // On the disk when it returns. Returns why it cannot, the old value kept, or "". A value that the key has
  // already is not written again: flash wears.
  std::string Set(const std::string& key, const std::string& value);
  // The same for removal; a key that is not there needs none.
  std::string Erase(const std::string& key);

 private:
  Store(std::string configPath, StoreConfig config);
  std::string Load();
  std::string Write(const std::string& key, const char* value);
  std::string WriteDevices();

  const std::string configPath_;
  FileLock turn_;
  const StoreConfig config_;
  LibraryContext library_;
  bool stale_ = false;  // the library must read the copies before it writes them
};

#endif
