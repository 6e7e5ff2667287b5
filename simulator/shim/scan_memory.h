// The last scan that a program of this process asked the radio for. Any thread.
#ifndef ZQSIM_SCAN_MEMORY_H
#define ZQSIM_SCAN_MEMORY_H

#include <cstdint>

#include "cells.h"

// `asked` is the one network that the scan is for; empty for all.
void NoteScan(const CellName& asked);
// Milliseconds since then; UINT32_MAX when there was none.
uint32_t MsSinceScan();
CellName ScanAskedFor();

#endif
