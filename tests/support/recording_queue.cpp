#include "recording_queue.h"

#include <algorithm>
#include <stdexcept>

#include "zq_memory.h"

RecordingQueue::RecordingQueue(Handler handler, Writer writer)
    : zq_MsgQ("recording", nullptr),
      handler_(std::move(handler)),
      writer_(writer ? std::move(writer) : [](const MSG_COMMON& message) {
        return std::to_string(message.type) + ":" + std::to_string(message.param1) + ":" +
               std::to_string(message.param2);
      }) {}

RecordingQueue::~RecordingQueue() {
  Destroy(true);
}

void RecordingQueue::Start() {
  if (!Create(nullptr, 0)) throw std::runtime_error("no queue");
  Take();
}

std::string RecordingQueue::Take() {
  const std::lock_guard lock(mutex_);
  return std::exchange(written_, {});
}

void RecordingQueue::Await(uint32_t type, size_t count) {
  std::unique_lock lock(mutex_);
  handled_.wait(lock, [&] { return static_cast<size_t>(std::ranges::count(types_, type)) >= count; });
}

size_t RecordingQueue::Count(uint32_t type) {
  const std::lock_guard lock(mutex_);
  return static_cast<size_t>(std::ranges::count(types_, type));
}

void RecordingQueue::MessageHandler(MSG_COMMON* message) {
  const MSG_COMMON content = *message;
  zq__free(message, __FILE__, __LINE__);
  const std::string text = writer_(content);
  {
    const std::lock_guard lock(mutex_);
    if (!text.empty()) written_ += (written_.empty() ? "" : ",") + text;
  }
  if (handler_) handler_(content);
  const std::lock_guard lock(mutex_);
  types_.push_back(content.type);
  handled_.notify_all();
}

bool Post(uint32_t queue, uint32_t type, uint32_t param1, uintptr_t param2, bool inFront) {
  return zq__MsgCreateCommonAndSend(queue, 0, type, param1, param2, 0, inFront, 0, __FILE__, __LINE__);
}
