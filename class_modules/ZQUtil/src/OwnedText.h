// A string of the platform's allocator with an owner.
#ifndef ZQUTIL_OWNED_TEXT_H
#define ZQUTIL_OWNED_TEXT_H

#include <memory>

#include "zq_memory.h"

struct ReturnToPlatform {
  void operator()(void* block) const { zq__free(block, "class_modules/ZQUtil/OwnedText", __LINE__); }
};

using OwnedText = std::unique_ptr<char, ReturnToPlatform>;

#endif
