// What the callbacks of file monitors heard. Callbacks are plain functions, so there is one of these for a program.
#ifndef ZQUTIL_TESTS_HEARD_CALLS_H
#define ZQUTIL_TESTS_HEARD_CALLS_H

#include <fcntl.h>
#include <unistd.h>

#include <condition_variable>
#include <cstddef>
#include <map>
#include <mutex>
#include <string>

class HeardCalls {
 public:
  void Add(const std::string& call) {
    const std::lock_guard lock(mutex_);
    ++calls_[call];
    ++total_;
    added_.notify_all();
  }
  // Returns when that many calls were heard since Clear.
  void Await(size_t total) {
    std::unique_lock lock(mutex_);
    added_.wait(lock, [&] { return total_ >= total; });
  }
  size_t Count(const std::string& call) {
    const std::lock_guard lock(mutex_);
    return calls_[call];
  }
  size_t Total() {
    const std::lock_guard lock(mutex_);
    return total_;
  }
  void Clear() {
    const std::lock_guard lock(mutex_);
    calls_.clear();
    total_ = 0;
  }

 private:
  std::mutex mutex_;
  std::condition_variable added_;
  std::map<std::string, size_t> calls_;
  size_t total_ = 0;
};

// One modification event: a byte more in a file.
inline void Modify(const std::string& path) {
  const int file = open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
  [[maybe_unused]] const ssize_t written = write(file, "x", 1);
  close(file);
}

#endif
