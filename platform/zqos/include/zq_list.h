// A named list of records that the list does not own. One thread at a time.
#ifndef ZQ_LIST_H
#define ZQ_LIST_H

#include <cstddef>
#include <memory>

#include "zq_api.h"

// How a sorted list orders its records.
enum zq_ListOrder { ZQ_LIST_ASCENDING = 1, ZQ_LIST_DESCENDING = 2 };
// What the key in a record is.
enum zq_ListKey {
  ZQ_LIST_KEY_INT32 = 1,
  ZQ_LIST_KEY_UINT32 = 2,
  ZQ_LIST_KEY_TEXT = 7  // char*, compared byte by byte; null sorts first
};

class ZQ_API zq_List {
 public:
  class Position;  // a place in the list; see First and Next

  // A plain list. The name is copied.
  zq_List(const char* name, const char* file, int line);
  // A sorted list: the key lies `keyOffset` bytes into each record. Equal keys keep the order of arrival.
  zq_List(const char* name, zq_ListOrder order, zq_ListKey key, size_t keyOffset, const char* file, int line);
  zq_List(const zq_List&) = delete;
  zq_List& operator=(const zq_List&) = delete;
  // Forgets the records; they are the caller's.
  ~zq_List();

  // To its place in a sorted list, to the tail of a plain one. Null records are refused: false.
  bool Add(void* record);
  // At an end of a plain list; a sorted one puts the record in its place.
  bool AddHead(void* record);
  bool AddTail(void* record);
  // The record taken out, or null when the list is empty.
  void* RemoveHead();
  // Takes out the first occurrence; false when the record is not in the list.
  bool Remove(void* record);
  size_t Count() const;
  const char* Name() const;

  // Iteration from the head: for (auto* p = list.First(); p; p = list.Next(p)) use(list.Record(p)). A
  // position is good until its record is taken out.
  Position* First() const;
  Position* Next(const Position* position) const;
  void* Record(const Position* position) const;

 private:
  struct Body;
  std::unique_ptr<Body> body_;
};

#endif
