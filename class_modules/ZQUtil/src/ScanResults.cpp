#include "ScanResults.h"

#include "ScanEvent.h"
#include "ScanSettling.h"
#include "ScanStream.h"

void ReadScanResults(char* results, size_t length, int version, const char* wanted, zq_List* list) {
  ScanSettling settling(list, wanted);
  ScanStream stream(results, length, version);
  while (iw_event* const event = stream.Next()) {
    if (!settling.Before(*event)) return;
    ApplyScanEvent(event, settling.Working());
    settling.After(*event);
  }
  settling.End();
}
