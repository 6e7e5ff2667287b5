#include "trace_instances.h"

#include <cstdio>

namespace {

constexpr uint32_t kGenerations = 1U << 24;

constexpr TraceInstances::Name kNoName{'-'};

}  // namespace

int TraceInstances::Create(const char* name) {
  const std::lock_guard lock(mutex_);
  for (unsigned i = 0; i < kPlaces; ++i) {
    Place& place = places_[i];
    if (place.used) continue;
    place.used = true;
    place.generation = (place.generation + 1) % kGenerations;
    place.name = kNoName;
    if (name != nullptr && *name != '\0') snprintf(place.name.data(), place.name.size(), "%s", name);
    return static_cast<int>(place.generation * kPlaces + i + 1);
  }
  return 0;
}

void TraceInstances::Release(int instance) {
  const std::lock_guard lock(mutex_);
  if (Place* place = Find(instance)) place->used = false;
}

TraceInstances::Name TraceInstances::NameOf(int instance) {
  if (instance <= 0) return kNoName;
  const std::lock_guard lock(mutex_);
  const Place* place = Find(instance);
  return place != nullptr ? place->name : kNoName;
}

TraceInstances::Place* TraceInstances::Find(int instance) {
  if (instance <= 0) return nullptr;
  const uint32_t number = static_cast<uint32_t>(instance) - 1;
  Place& place = places_[number % kPlaces];
  return place.used && place.generation == number / kPlaces ? &place : nullptr;
}
