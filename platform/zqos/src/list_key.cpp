#include "list_key.h"

#include <cstdint>
#include <cstring>

namespace {

template <typename Key>
Key KeyOf(const void* record, size_t offset) {
  Key key;
  memcpy(&key, static_cast<const char*>(record) + offset, sizeof key);
  return key;
}

template <typename Number>
int Compare(Number left, Number right) {
  return (left > right) - (left < right);
}

int CompareTexts(const char* left, const char* right) {
  if (left == nullptr || right == nullptr) return Compare(left != nullptr, right != nullptr);
  return strcmp(left, right);
}

}  // namespace

int CompareKeys(zq_ListKey key, size_t offset, const void* left, const void* right) {
  switch (key) {
    case ZQ_LIST_KEY_INT32:
      return Compare(KeyOf<int32_t>(left, offset), KeyOf<int32_t>(right, offset));
    case ZQ_LIST_KEY_UINT32:
      return Compare(KeyOf<uint32_t>(left, offset), KeyOf<uint32_t>(right, offset));
    case ZQ_LIST_KEY_TEXT:
      return CompareTexts(KeyOf<const char*>(left, offset), KeyOf<const char*>(right, offset));
  }
  return 0;  // an unknown kind: the order of arrival
}
