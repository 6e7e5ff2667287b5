// Records on their way to the disk, and the thread that brings them there.
#ifndef APPLOG_RECORD_QUEUE_H
#define APPLOG_RECORD_QUEUE_H

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

constexpr size_t kMaxWaiting = 1000;

// Any thread; nothing but End waits for the disk. One for the process, never destroyed: a thread that the disk
// holds up may outlive the last user.
class RecordQueue {
 public:
  static RecordQueue& Get();

  void Begin();
  // False when nobody began, too many wait, or the system gives no thread.
  bool Take(std::string line);
  // The last one to end waits for the disk, at most 5 seconds.
  void End();

 private:
  static int32_t Thread(void* self);
  void Run();
  bool Write(const std::vector<std::string>& lines, unsigned long lost);

  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<std::string> waiting_;
  unsigned long lost_ = 0;
  int users_ = 0;
  bool running_ = false;
  bool complained_ = false;  // the thread's own: the disk refuses, and the trace says so already
};

#endif
