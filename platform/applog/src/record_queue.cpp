#include "record_queue.h"

#include <cerrno>
#include <climits>
#include <exception>
#include <system_error>
#include <utility>

#include "record_file.h"
#include "record_line.h"
#include "zq_clock.h"
#include "zq_ini.h"
#include "zq_thread.h"
#include "zq_trace.h"

namespace {

// Beside the settings files.
constexpr char kFile[] = "zqapplog.log";
constexpr uint32_t kEndMs = 5000;

void Complain(int error) {
  static const int instance = zq_TraceCreate("zqapplog", __FILE__, __LINE__);
  zq_Trace(instance, ZQ_TRACE_FAILURE, 1, true, "records are lost: %s\n",
           std::generic_category().message(error).c_str());
}

}  // namespace

RecordQueue& RecordQueue::Get() {
  static RecordQueue& queue = *new RecordQueue;
  return queue;
}

void RecordQueue::Begin() {
  const std::lock_guard lock(mutex_);
  ++users_;
}

bool RecordQueue::Take(std::string line) {
  const std::lock_guard lock(mutex_);
  if (users_ == 0) return false;
  // Most processes never have a record.
  if (!running_) running_ = zq__beginthread(&Thread, this, nullptr, __FILE__, __LINE__) != 0;
  if (!running_ || waiting_.size() >= kMaxWaiting) {
    ++lost_;
    return false;
  }
  waiting_.push_back(std::move(line));
  changed_.notify_one();
  return true;
}

void RecordQueue::End() {
  {
    const std::lock_guard lock(mutex_);
    if (users_ == 0 || --users_ > 0) return;
    changed_.notify_one();
  }
  zq_ThreadAwaitEnd(&Thread, kEndMs);
}

int32_t RecordQueue::Thread(void* self) {
  zq_ThreadSetName(0, "zqapplog");
  static_cast<RecordQueue*>(self)->Run();
  return 0;
}

void RecordQueue::Run() {
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return !waiting_.empty() || users_ == 0; });
    if (waiting_.empty()) break;
    const std::vector<std::string> lines = std::exchange(waiting_, {});
    const unsigned long lost = std::exchange(lost_, 0);
    lock.unlock();
    const bool written = Write(lines, lost);
    lock.lock();
    if (!written) lost_ += lost + lines.size();
  }
  running_ = false;
}

bool RecordQueue::Write(const std::vector<std::string>& lines, unsigned long lost) try {
  std::string bytes = lost > 0 ? LossLine(zq_ClockGet()->Wall().tv_sec, lost) : "";
  for (const std::string& line : lines) bytes += line;
  char path[PATH_MAX];
  errno = ENAMETOOLONG;
  const bool written = zq_INIFilePath(kFile, path, sizeof path) && AppendRecords(path, bytes);
  if (!written && !complained_) Complain(errno);
  complained_ = !written;
  return written;
} catch (const std::exception&) {
  return false;
}
