// One deferred write of a setting, and its turn among the others.
//
// Each write has a thread of its own, but writes are carried out in the order in which they were asked for:
// of two values that a script sets one after the other, the second is the one that stays. A record links to
// the one before it and waits for that one's `done`; there is no lock, and no record ends before its
// followers: records and their strings are kept for the life of the process.
#ifndef ZQUTIL_CONFIG_WRITE_RECORD_H
#define ZQUTIL_CONFIG_WRITE_RECORD_H

#include <atomic>
#include <cstdint>

struct ConfigWriteRecord {
  char* section;
  char* key;
  char* stringValue;  // null: intValue is written
  int32_t intValue;
  char* file;
  ConfigWriteRecord* before;    // the write that goes first, or null
  std::atomic<uint32_t> state;  // ConfigWriteState
  std::atomic<uint32_t> done;   // 1 when the write was tried, or dropped
};

enum ConfigWriteState : uint32_t { kWriteWaits, kWriteBegun, kWriteDropped };

// A record with copies of the texts, next in turn; null when there is no memory. Any thread. The caller sees
// to it that PassTurn is called for it.
ConfigWriteRecord* NewConfigWriteRecord(const char* section, const char* key, const char* stringValue,
                                        int32_t intValue, const char* file);
// Waits for the writes before it. False when the write was dropped meanwhile.
bool AwaitTurn(ConfigWriteRecord& record);
void PassTurn(ConfigWriteRecord& record);
// The file is about to be removed: drops the writes to it that have not begun and waits for one that has, so that none
// brings it back. Any thread.
void DropConfigWrites(const char* file);

#endif
