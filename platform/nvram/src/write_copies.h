// Writes of a store on regular files, checked to the end: the library's own write ignores what fsync says,
// and leaves what was in its memory behind the last text.
#ifndef ZQ_NVRAM_WRITE_COPIES_H
#define ZQ_NVRAM_WRITE_COPIES_H

#include <string>

#include "copy_image.h"
#include "store_config.h"

// Puts the entries into the older copy, on the disk when it returns; the newer copy is on the disk before the
// first byte is touched, so that at any instant one of the two is whole. Returns why it cannot, the copies as
// they were, or "".
std::string WriteCopies(const StoreConfig& config, const Entries& entries);

// Sees that the newer copy is on the disk: who wrote it may have been killed before that. Returns why not, or
// "".
std::string SettleCopies(const StoreConfig& config);

#endif
