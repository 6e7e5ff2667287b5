#include "store.h"

#include <fcntl.h>
#include <libuboot.h>
#include <stddef.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "copy_image.h"
#include "key_rule.h"
#include "mend_store.h"
#include "write_guard.h"
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

Store::Store(const std::string& configPath, StoreConfig config)
    : turn_(configPath, O_RDONLY), config_(std::move(config)) {}

Store::~Store() {
  if (context_ == nullptr) return;
  libuboot_close(context_);
  libuboot_exit(context_);
}

std::unique_ptr<Store> Store::Open(const std::string& configPath, std::string& why) {
  StoreConfig config;
  why = ReadStoreConfig(configPath, config);
  if (!why.empty()) return nullptr;
  std::unique_ptr<Store> store(new Store(configPath, std::move(config)));
  if (!store->turn_.Held()) {
    why = "cannot lock " + configPath + ": " + strerror(errno);
    return nullptr;
  }
  why = store->Load(configPath);
  return why.empty() ? std::move(store) : nullptr;
}

std::string Store::Load(const std::string& configPath) {
  std::string why = MendStore(config_);
  if (!why.empty()) return why;
  CheckToolsLock();
  if (libuboot_initialize(&context_, nullptr) != 0) return "out of memory";
  const int config = libuboot_read_config(context_, configPath.c_str());
  if (config != 0) return "cannot use the copies that " + configPath + " names: " + strerror(-config);
  const int opened = libuboot_open(context_);
  if (opened != 0) return "cannot read " + config_.copies[0].path + ": " + strerror(-opened);
  return {};
}

std::string Store::Reload() {
  libuboot_close(context_);
  std::string why = MendStore(config_);
  const int opened = libuboot_open(context_);
  if (why.empty() && opened != 0) why = "cannot read " + config_.copies[0].path + ": " + strerror(-opened);
  written_ = !why.empty();
  return why;
}

std::optional<std::string> Store::Get(const std::string& key) const {
  const std::unique_ptr<char, decltype(&std::free)> value(libuboot_get_env(context_, key.c_str()),
                                                          &std::free);
  return value ? std::optional<std::string>(value.get()) : std::nullopt;
}

std::vector<std::pair<std::string, std::string>> Store::List() const {
  std::vector<std::pair<std::string, std::string>> all;
  for (void* entry = libuboot_iterator(context_, nullptr); entry != nullptr;
       entry = libuboot_iterator(context_, entry))
    all.emplace_back(libuboot_getname(entry), libuboot_getvalue(entry));
  std::sort(all.begin(), all.end());
  return all;
}

std::string Store::Set(const std::string& key, const std::string& value) {
  const std::string wrong = JudgeKey(key);
  if (!wrong.empty()) return wrong;
  return Write(key, value.c_str());
}

std::string Store::Erase(const std::string& key) {
  return Write(key, nullptr);
}

std::string Store::Write(const std::string& key, const char* value) {
  // After a write the library no longer knows which copy is newer.
  if (written_) {
    std::string why = Reload();
    if (!why.empty()) return why;
  }
  const std::optional<std::string> old = Get(key);
  if (value == nullptr ? !old : old == value) return {};

  WriteGuard guard(config_);
  std::string why = guard.Begin();
  if (!why.empty()) return why;
  if (!Fits(key, value, guard.FlagsRoom())) return "the store is full";
  if (libuboot_set_env(context_, key.c_str(), value) != 0) return "the key is protected by .flags";
  written_ = true;
  const int stored = libuboot_env_store(context_);
  why = stored == 0 ? guard.Commit() : "cannot write: " + std::string(strerror(errno));
  if (why.empty()) return {};
  const std::string undone = guard.RollBack();
  if (!undone.empty()) why += "; " + undone;
  const std::string reloaded = Reload();
  return reloaded.empty() ? why : why + "; " + reloaded;
}

bool Store::Fits(const std::string& key, const char* value, size_t flagsRoom) const {
  size_t used = HeaderSize(config_.Redundant()) + flagsRoom + 1;
  for (const auto& [name, text] : List()) {
    if (name != key) used += name.size() + text.size() + 2;
  }
  if (value != nullptr) used += key.size() + strlen(value) + 2;
  return used <= config_.copies[0].size;
}
