// What one event of a scan adds to the record of the network that it is about.
#ifndef ZQUTIL_SCAN_EVENT_H
#define ZQUTIL_SCAN_EVENT_H

#include <iwlib.h>

#include "ESSIDStruct.h"

// Lengths that the event claims are not believed beyond what such an event may carry.
void ApplyScanEvent(iw_event* event, _ESSIDStruct* record);

#endif
