#include "SoftwareUpdateList.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <utility>

namespace {

struct List {
  std::vector<OfferedUpdate> updates;
  List* next = nullptr;  // of those set aside
};

std::atomic<List*> g_list = nullptr;
std::atomic<List*> g_aside = nullptr;
std::atomic<int32_t> g_readers = 0;

void SetAside(List* first) {
  if (first == nullptr) return;
  List* last = first;
  while (last->next != nullptr) last = last->next;
  last->next = g_aside;
  while (!g_aside.compare_exchange_weak(last->next, first)) {
  }
}

void FreeAside() {
  List* list = g_aside.exchange(nullptr);
  if (g_readers != 0) {
    SetAside(list);
    return;
  }
  while (list != nullptr) delete std::exchange(list, list->next);
}

void PutInPlace(List* list) {
  SetAside(g_list.exchange(list));
  FreeAside();
}

}  // namespace

SoftwareUpdateListReader::SoftwareUpdateListReader() {
  static const std::vector<OfferedUpdate> kNone;
  ++g_readers;
  const List* const list = g_list;
  updates_ = list != nullptr ? &list->updates : &kNone;
}

SoftwareUpdateListReader::~SoftwareUpdateListReader() {
  if (--g_readers == 0) FreeAside();
}

const OfferedUpdate* SoftwareUpdateListReader::Find(int32_t id) const {
  const auto found = std::ranges::find(*updates_, id, &OfferedUpdate::id);
  return found != updates_->end() ? &*found : nullptr;
}

void ReplaceSoftwareUpdateList(std::vector<OfferedUpdate> updates) {
  auto list = std::make_unique<List>();
  list->updates = std::move(updates);
  PutInPlace(list.release());
}

void ReleaseSoftwareUpdateList() {
  PutInPlace(nullptr);
}
