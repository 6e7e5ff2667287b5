// How the keys in a sorted list's records compare.
#ifndef ZQOS_LIST_KEY_H
#define ZQOS_LIST_KEY_H

#include <cstddef>

#include "zq_list.h"

// Less than, equal to or greater than 0 as the key in `left` is to the one in `right`. Keys need not be
// aligned.
int CompareKeys(zq_ListKey key, size_t offset, const void* left, const void* right);

#endif
