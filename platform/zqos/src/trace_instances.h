// The names of the trace's instances: a bounded table whose places carry a generation, so that an instance
// that was released is never taken for the one that has its place now. Any thread.
#ifndef ZQOS_TRACE_INSTANCES_H
#define ZQOS_TRACE_INSTANCES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>

class TraceInstances {
 public:
  static constexpr unsigned kPlaces = 64;
  static constexpr size_t kNameSize = 64;  // longer names are cut
  using Name = std::array<char, kNameSize>;

  // Greater than 0, or 0 when every place is taken. A null or empty name shows as "-".
  int Create(const char* name);
  void Release(int instance);
  // The name to show: "-" for 0 and for instances that are not, or no longer, in use.
  Name NameOf(int instance);

 private:
  struct Place {
    uint32_t generation = 0;
    bool used = false;
    Name name{};
  };
  // Null unless the instance is in use. Under the mutex.
  Place* Find(int instance);

  std::mutex mutex_;
  std::array<Place, kPlaces> places_;
};

#endif
