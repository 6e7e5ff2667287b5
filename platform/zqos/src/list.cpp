#include <algorithm>
#include <exception>
#include <iterator>
#include <list>
#include <new>
#include <string>

#include "list_key.h"
#include "platform_trace.h"
#include "zq_list.h"

// A place knows its own iterator, so that a position leads to the next one without a search.
class zq_List::Position {
 public:
  explicit Position(void* record) : record_(record) {}
  void* record_;
  std::list<Position>::iterator self_;
};

struct zq_List::Body {
  bool sorted = false;
  zq_ListOrder order = ZQ_LIST_ASCENDING;
  zq_ListKey key = ZQ_LIST_KEY_INT32;
  size_t keyOffset = 0;
  std::string name;
  std::list<Position> records;

  bool ComesAfter(const void* record, const void* other) const {
    const int comparison = CompareKeys(key, keyOffset, record, other);
    return order == ZQ_LIST_DESCENDING ? comparison < 0 : comparison > 0;
  }

  // From the tail: records that arrive in order are placed at once, and equal ones keep their order.
  std::list<Position>::iterator PlaceFor(const void* record) {
    auto place = records.end();
    while (place != records.begin() && ComesAfter(std::prev(place)->record_, record)) --place;
    return place;
  }
};

namespace {

template <typename Body, typename Place>
bool Insert(Body& body, Place place, void* record) try {
  const auto added = body.records.emplace(place, record);
  added->self_ = added;
  return true;
} catch (const std::exception&) {
  PlatformFailure("no memory for a record of list %s", body.name.c_str());
  return false;
}

}  // namespace

zq_List::zq_List(const char* name, const char* file, int line) : body_(new (std::nothrow) Body) {
  try {
    if (body_ && name != nullptr) body_->name = name;
  } catch (const std::exception&) {
    body_.reset();
  }
  if (!body_) PlatformFailure("no memory for a list (%s:%d)", SourceName(file), line);
}

zq_List::zq_List(const char* name, zq_ListOrder order, zq_ListKey key, size_t keyOffset, const char* file,
                 int line)
    : zq_List(name, file, line) {
  if (!body_) return;
  body_->sorted = true;
  body_->order = order;
  body_->key = key;
  body_->keyOffset = keyOffset;
}

zq_List::~zq_List() = default;

bool zq_List::Add(void* record) {
  return AddTail(record);
}

bool zq_List::AddHead(void* record) {
  if (!body_ || record == nullptr) return false;
  return Insert(*body_, body_->sorted ? body_->PlaceFor(record) : body_->records.begin(), record);
}

bool zq_List::AddTail(void* record) {
  if (!body_ || record == nullptr) return false;
  return Insert(*body_, body_->sorted ? body_->PlaceFor(record) : body_->records.end(), record);
}

void* zq_List::RemoveHead() {
  if (!body_ || body_->records.empty()) return nullptr;
  void* record = body_->records.front().record_;
  body_->records.pop_front();
  return record;
}

bool zq_List::Remove(void* record) {
  if (!body_) return false;
  auto& records = body_->records;
  const auto found = std::ranges::find(records, record, &Position::record_);
  if (found == records.end()) return false;
  records.erase(found);
  return true;
}

size_t zq_List::Count() const {
  return body_ ? body_->records.size() : 0;
}

const char* zq_List::Name() const {
  return body_ ? body_->name.c_str() : "";
}

zq_List::Position* zq_List::First() const {
  return body_ && !body_->records.empty() ? &body_->records.front() : nullptr;
}

zq_List::Position* zq_List::Next(const Position* position) const {
  if (position == nullptr) return nullptr;
  const auto next = std::next(position->self_);
  return next != body_->records.end() ? &*next : nullptr;
}

void* zq_List::Record(const Position* position) const {
  return position != nullptr ? position->record_ : nullptr;
}
