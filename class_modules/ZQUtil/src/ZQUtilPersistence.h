// Deferred persistence: the script thread does not wait for the device's flash. (One exception: when the system
// starts no more threads, a settings write is done by whoever asks for it, rather than lost.)
//
//   settings file   my_WriteINIFileString/Int -> a thread for each write (threadConfigWrite)
//   key store       AsyncNVRAMWrite -> message 0x10007 -> the queue thread writes
//   hardware value  AsyncConfigWrite -> message 0x10008 -> the queue thread reads the value back,
//                   writes it to the settings file by the first way, and sets the backlight
#ifndef ZQUTIL_PERSISTENCE_H
#define ZQUTIL_PERSISTENCE_H

#include <cstdint>

#include "module_api.h"

class ZQAudioVolume;
class ZQScreen;

constexpr char kSettingsFile[] = "zqutil.ini";
constexpr char kConfigSection[] = "config";
constexpr char kBacklightFile[] = "/proc/blctrl";

enum : uint32_t {
  kMsgNVRAMWrite = 0x10007,  // second parameter: the NVRAMWriteRecord
  kMsgConfigWrite = 0x10008  // second parameter: the kind
};

// What AsyncConfigWrite is asked to save.
enum : int32_t { kConfigAudio = 1, kConfigBrightness = 2, kConfigContrast = 3 };

struct ConfigWriteRecord;

// One key-store write; record and strings are the platform allocator's.
struct NVRAMWriteRecord {
  char* key;
  char* value;
};

// Thread body: performs one settings write and returns 1. Keeps the record.
ZQUTIL_API int32_t threadConfigWrite(void* record);
// The key store's nvram_write_key, its arguments unchanged.
ZQUTIL_API int my_nvram_write_key(int handle, void* reserved, const char* key, const char* value);

// Writes the record and frees it. False when the store cannot be opened; the record is then as it was. Queue
// thread.
bool WriteNVRAMRecord(NVRAMWriteRecord* record);

// Queue thread only.
void SaveContrast(ZQScreen& screen);
void SaveVolumes(ZQAudioVolume& volumes);
// To the settings file and to the backlight.
void SaveBrightness(ZQScreen& screen);

// Waits until the settings writes that were begun are done; gives up, with a trace, after ten seconds: a host that
// ends, or begins again, does not wait for ever for a disk that is dead.
void AwaitConfigWrites();
// Waits until the queue has handled what scripts have left to it, at most ten seconds too, and then as above. Touches
// no singleton. Not for the queue's own thread, which would wait for itself all that time.
void AwaitDeferredWrites();

#endif
