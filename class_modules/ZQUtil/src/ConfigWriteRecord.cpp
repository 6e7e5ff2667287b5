#include "ConfigWriteRecord.h"

#include <cstring>
#include <new>

#include "zq_memory.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ConfigWriteRecord";

std::atomic<ConfigWriteRecord*> g_last = nullptr;

bool Copy(char*& field, const char* text) {
  if (text == nullptr) return true;
  field = zq__newString(text, kSourceTag, __LINE__);
  return field != nullptr;
}

void Free(ConfigWriteRecord* record) {
  zq__free(record->section, kSourceTag, __LINE__);
  zq__free(record->key, kSourceTag, __LINE__);
  zq__free(record->stringValue, kSourceTag, __LINE__);
  zq__free(record->file, kSourceTag, __LINE__);
  zq__free(record, kSourceTag, __LINE__);
}

}  // namespace

ConfigWriteRecord* NewConfigWriteRecord(const char* section, const char* key, const char* stringValue,
                                        int32_t intValue, const char* file) {
  void* const block = zq__calloc(1, sizeof(ConfigWriteRecord), kSourceTag, __LINE__);
  if (block == nullptr) return nullptr;
  auto* const record = new (block) ConfigWriteRecord{};
  record->intValue = intValue;
  if (!Copy(record->section, section) || !Copy(record->key, key) || !Copy(record->stringValue, stringValue) ||
      !Copy(record->file, file)) {
    Free(record);
    return nullptr;
  }
  // Linked before it can be found: whoever finds it walks on from it.
  record->before = g_last;
  while (!g_last.compare_exchange_weak(record->before, record)) {
  }
  return record;
}

bool AwaitTurn(ConfigWriteRecord& record) {
  if (record.before != nullptr) record.before->done.wait(0);
  uint32_t waits = kWriteWaits;
  return record.state.compare_exchange_strong(waits, kWriteBegun);
}

void PassTurn(ConfigWriteRecord& record) {
  record.done = 1;
  record.done.notify_all();
}

void DropConfigWrites(const char* file) {
  for (ConfigWriteRecord* record = g_last; record != nullptr && record->done == 0; record = record->before) {
    if (std::strcmp(record->file, file) != 0) continue;
    uint32_t waits = kWriteWaits;
    if (!record->state.compare_exchange_strong(waits, kWriteDropped)) record->done.wait(0);
  }
}
