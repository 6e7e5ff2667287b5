#include "store.h"

#include <fcntl.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "device_store.h"
#include "key_rule.h"
#include "mend_store.h"
#include "uboot_library.h"
#include "write_copies.h"
#include "zq_trace.h"

namespace {

// The library goes on without its lock when it cannot have it. Users of this library still take turns by the
// config file; it is the boot loader's tools that are no longer kept away.
void CheckToolsLock() {
  static std::atomic<bool> told = false;
  if (told || FileLock(kToolsLock, O_WRONLY | O_CREAT).Held() || told.exchange(true)) return;
  zq_Trace(0, ZQ_TRACE_FAILURE, 1, true, "nvram: cannot keep fw_setenv away: %s: %s", kToolsLock,
           strerror(errno));
}

}  // namespace

Store::Store(std::string configPath, StoreConfig config)
    : configPath_(std::move(configPath)), turn_(configPath_, O_RDONLY), config_(std::move(config)) {}

std::unique_ptr<Store> Store::Open(const std::string& configPath, std::string& why) {
  StoreConfig config;
  why = ReadStoreConfig(configPath, config);
  if (!why.empty()) return nullptr;
  std::unique_ptr<Store> store(new Store(configPath, std::move(config)));
  if (!store->turn_.Held()) {
    why = "cannot lock " + configPath + ": " + strerror(errno);
    return nullptr;
  }
  why = store->Load();
  return why.empty() ? std::move(store) : nullptr;
}

std::string Store::Load() {
  std::string why = MendStore(config_);
  if (!why.empty()) return why;
  CheckToolsLock();
  stale_ = library_.Open(configPath_, why) != 0;
  return why;
}

std::optional<std::string> Store::Get(const std::string& key) const {
  const std::unique_ptr<char, decltype(&std::free)> value(libuboot_get_env(library_.Get(), key.c_str()),
                                                          &std::free);
  return value ? std::optional<std::string>(value.get()) : std::nullopt;
}

Entries Store::List() const {
  Entries all;
  for (void* entry = libuboot_iterator(library_.Get(), nullptr); entry != nullptr;
       entry = libuboot_iterator(library_.Get(), entry))
    all.emplace_back(libuboot_getname(entry), libuboot_getvalue(entry));
  std::sort(all.begin(), all.end());
  return all;
}

std::string Store::Set(const std::string& key, const std::string& value) {
  std::string wrong = JudgeKey(key);
  return wrong.empty() ? Write(key, value.c_str()) : wrong;
}

std::string Store::Erase(const std::string& key) {
  return Write(key, nullptr);
}

std::string Store::Write(const std::string& key, const char* value) {
  const bool regular = !IsOnDevice(config_);
  if (stale_) {
    std::string why = Load();
    if (!why.empty()) return why;
  }
  const std::optional<std::string> old = Get(key);
  if (value == nullptr ? !old : old == value) return regular ? SettleCopies(config_) : std::string();
  if (libuboot_set_env(library_.Get(), key.c_str(), value) != 0) return "the key is protected by .flags";
  std::string why = regular ? WriteCopies(config_, List()) : WriteDevices();
  // What the library holds is what the handle's readers see.
  if (!why.empty()) libuboot_set_env(library_.Get(), key.c_str(), old ? old->c_str() : nullptr);
  return why;
}

std::string Store::WriteDevices() {
  // The library neither counts the end of the texts nor gives its memory back when they do not fit.
  if (!BuildImage(List(), {}, config_.copies[0].size, config_.Redundant(), 0)) return "the store is full";
  stale_ = true;
  return StoreThroughLibrary(library_.Get(), config_);
}
