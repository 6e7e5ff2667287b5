// Copies of any bytes through mending, opening and a write; fw_env.config files of any text.
#include <stdlib.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "copy_image.h"
#include "store.h"
#include "store_config.h"
#include "zq_trace.h"

namespace {

constexpr size_t kCopySize = 64;

// The first byte of the input.
enum Control : uint8_t {
  kFirstChecked = 1,  // the copy gets the checksum that its bytes have
  kSecondChecked = 2,
  kFirstMissing = 4,
  kSecondMissing = 8,
  kOneCopy = 16,
  kConfigText = 32,  // the rest is a config file
};

void Require(bool held) {
  if (!held) abort();
}

// Outlives the function that removes it at the end.
const std::string& Folder() {
  static const std::string& folder = *new std::string([] {
    std::string pattern = (std::filesystem::temp_directory_path() / "zq-nvram-fuzz-XXXXXX").string();
    Require(mkdtemp(pattern.data()) != nullptr);
    zq_TraceRedirect("off", 0);
    atexit([] { std::filesystem::remove_all(Folder()); });
    return pattern;
  }());
  return folder;
}

void Put(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

// Whether the copy is good.
bool PutCopy(const std::string& path, std::string bytes, bool checked, bool missing, bool redundant) {
  unlink(path.c_str());
  if (missing) return false;
  if (checked && bytes.size() == kCopySize) {
    const size_t header = HeaderSize(redundant);
    const auto sum = static_cast<uint32_t>(crc32(0, reinterpret_cast<const Bytef*>(bytes.data()) + header,
                                                 static_cast<uInt>(bytes.size() - header)));
    std::memcpy(bytes.data(), &sum, sizeof sum);
  }
  Put(path, bytes);
  const Bytes image(bytes.begin(), bytes.end());
  return image.size() == kCopySize && IsWhole(image, redundant) && IsReadable(image, redundant);
}

void ReadAndWrite(const std::string& config, bool anyGood) {
  std::string why;
  Entries before;
  bool written = false;
  {
    const std::unique_ptr<Store> store = Store::Open(config, why);
    Require(store != nullptr || !anyGood);
    Require((store == nullptr) == !why.empty());
    if (!store) return;
    before = store->List();
    written = store->Set("fuzz", "written").empty();
    Require(written == (store->Get("fuzz") == "written"));
  }
  const std::unique_ptr<Store> store = Store::Open(config, why);
  Require(store != nullptr);
  Entries after = store->List();
  if (written) {
    Require(store->Get("fuzz") == "written");
    const auto isOurs = [](const auto& entry) { return entry.first == "fuzz"; };
    std::erase_if(after, isOurs);
    std::erase_if(before, isOurs);
  }
  Require(after == before);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const uint8_t control = data[0];
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  if ((control & kConfigText) != 0) {
    StoreConfig config;
    if (ParseStoreConfig(text, config).empty()) Require(!config.copies.empty() && config.copies.size() <= 2);
    return 0;
  }
  const std::string folder = Folder();
  const bool redundant = (control & kOneCopy) == 0;
  const size_t half = std::min(text.size(), kCopySize);
  bool anyGood = PutCopy(folder + "/a", text.substr(0, half), (control & kFirstChecked) != 0,
                         (control & kFirstMissing) != 0, redundant);
  std::string config = folder + "/a 0 0x40\n";
  if (redundant) {
    anyGood |= PutCopy(folder + "/b", text.substr(half), (control & kSecondChecked) != 0,
                       (control & kSecondMissing) != 0, redundant);
    config += folder + "/b 0 0x40\n";
  }
  Put(folder + "/config", config);
  ReadAndWrite(folder + "/config", anyGood);
  return 0;
}
