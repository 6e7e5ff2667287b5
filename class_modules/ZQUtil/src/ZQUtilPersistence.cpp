#include "ZQUtilPersistence.h"

#include <chrono>
#include <cstdio>
#include <thread>

#include "ConfigWriteRecord.h"
#include "ZQScreen.h"
#include "ZQUtil.h"
#include "ZQUtilTrace.h"
#include "audio_volume.h"
#include "nvram.h"
#include "zq_ini.h"
#include "zq_memory.h"
#include "zq_thread.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQUtilPersistence";
constexpr uint32_t kAwaitWritesMs = 10000;
constexpr uint32_t kAwaitQueueMs = 10000;

// False when the queue is still at work after that time.
bool AwaitQueue(uint32_t milliseconds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  while (zq_MsgQPending(ZQUtilMsgQHandle) != 0) {
    if (std::chrono::steady_clock::now() >= deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

void Begin(ConfigWriteRecord* record) {
  if (record == nullptr) return;
  if (zq__beginthread(threadConfigWrite, record, nullptr, kSourceTag, __LINE__) != 0) return;
  // The system starts no more threads: better a caller that waits for the disk than a setting that is lost.
  threadConfigWrite(record);
}

void Write(const ConfigWriteRecord& record) {
  if (record.stringValue == nullptr) {
    ZQUTIL_TRACE("Writing INI FIle Int %s, %s, %i, %s\n", record.section, record.key, record.intValue,
                 record.file);
    zq_WriteINIFileInt(record.section, record.key, record.intValue, record.file, true);
  } else {
    ZQUTIL_TRACE("Writing INI FIle String %s, %s, %s, %s\n", record.section, record.key, record.stringValue,
                 record.file);
    zq_WriteINIFileString(record.section, record.key, record.stringValue, record.file, true);
  }
}

void FreeNVRAMRecord(NVRAMWriteRecord* record) {
  zq__free(record->key, kSourceTag, __LINE__);
  zq__free(record->value, kSourceTag, __LINE__);
  zq__free(record, kSourceTag, __LINE__);
}

NVRAMWriteRecord* NewNVRAMRecord(const char* key, const char* value) {
  auto* record =
      static_cast<NVRAMWriteRecord*>(zq__calloc(1, sizeof(NVRAMWriteRecord), kSourceTag, __LINE__));
  if (record == nullptr) return nullptr;
  record->key = zq__newString(key, kSourceTag, __LINE__);
  record->value = zq__newString(value, kSourceTag, __LINE__);
  if (record->key != nullptr && record->value != nullptr) return record;
  FreeNVRAMRecord(record);
  return nullptr;
}

}  // namespace

void ZQUtil::my_WriteINIFileString(const char* section, const char* key, const char* value,
                                   const char* file) {
  if (section == nullptr || key == nullptr || value == nullptr || file == nullptr) return;
  Begin(NewConfigWriteRecord(section, key, value, 0, file));
}

void ZQUtil::my_WriteINIFileInt(const char* section, const char* key, int32_t value, const char* file) {
  if (section == nullptr || key == nullptr || file == nullptr) return;
  Begin(NewConfigWriteRecord(section, key, nullptr, value, file));
}

int32_t threadConfigWrite(void* argument) {
  auto* record = static_cast<ConfigWriteRecord*>(argument);
  if (record == nullptr) return 1;
  if (AwaitTurn(*record)) Write(*record);
  PassTurn(*record);
  return 1;
}

void AwaitConfigWrites() {
  if (zq_ThreadAwaitEnd(threadConfigWrite, kAwaitWritesMs)) return;
  ZQUTIL_TRACE("ZQUtil settings writes did not end within %u ms\n", kAwaitWritesMs);
}

void AwaitDeferredWrites() {
  if (!AwaitQueue(kAwaitQueueMs)) {
    ZQUTIL_TRACE("ZQUtil queue was not done within %u ms\n", kAwaitQueueMs);
  }
  AwaitConfigWrites();
}

int my_nvram_write_key(int handle, void* reserved, const char* key, const char* value) {
  return nvram_write_key(handle, reserved, key, value);
}

void ZQUtil::AsyncNVRAMWrite(const char* key, const char* value) {
  NVRAMWriteRecord* const record = NewNVRAMRecord(key, value);
  if (record == nullptr) return;
  if (!PostToModule(kMsgNVRAMWrite, reinterpret_cast<uintptr_t>(record))) FreeNVRAMRecord(record);
}

bool WriteNVRAMRecord(NVRAMWriteRecord* record) {
  ZQUTIL_TRACE("ZQUtil Asynchronous NVRAM Write\n");
  const int store = nvram_open(0, 0);
  if (store == -1) return false;
  my_nvram_write_key(store, nullptr, record->key, record->value);
  nvram_close(store);
  FreeNVRAMRecord(record);
  return true;
}

void ZQUtil::AsyncConfigWrite(int32_t kind) {
  PostToModule(kMsgConfigWrite, static_cast<uintptr_t>(kind));
}

void SaveContrast(ZQScreen& screen) {
  ZQUtil::my_WriteINIFileInt(kConfigSection, "contrast", screen.getContrast(), kSettingsFile);
}

void SaveVolumes(ZQAudioVolume& volumes) {
  ZQUtil::my_WriteINIFileInt(kConfigSection, "phoneVolume", volumes.getPhoneVolume(), kSettingsFile);
  ZQUtil::my_WriteINIFileInt(kConfigSection, "mediaVolume", volumes.getMediaVolume(), kSettingsFile);
  ZQUtil::my_WriteINIFileInt(kConfigSection, "micVolume", volumes.getMicVolume(), kSettingsFile);
  volumes.Initialize();
}

void SaveBrightness(ZQScreen& screen) {
  ZQUtil::my_WriteINIFileInt(kConfigSection, "brightness", screen.getBrightness(), kSettingsFile);
  ZQUTIL_TRACE("ZQUtil opening %s\n", kBacklightFile);
  std::FILE* const backlight = std::fopen(kBacklightFile, "we");
  if (backlight == nullptr) {
    ZQUTIL_TRACE("ZQUtil could not open %s\n", kBacklightFile);
    return;
  }
  ZQUTIL_TRACE("ZqUtil Writing screen brightness\n");
  std::fprintf(backlight, "%d", screen.getBrightness());
  std::fclose(backlight);
}
