// A queue that writes down what it handles, as one text to compare whole.
#ifndef ZQ_TEST_RECORDING_QUEUE_H
#define ZQ_TEST_RECORDING_QUEUE_H

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "zq_msgq.h"

// Any thread may look; messages are handled on the queue's thread.
class RecordingQueue : public zq_MsgQ {
 public:
  // What a message is written as; "" leaves it out. By default "type:param1:param2".
  using Writer = std::function<std::string(const MSG_COMMON&)>;
  // Called for each message after it was written down.
  using Handler = std::function<void(const MSG_COMMON&)>;

  explicit RecordingQueue(Handler handler = {}, Writer writer = {});
  ~RecordingQueue() override;

  // Create with the default stack, and forgets the queue-started message. Throws when the queue cannot be
  // made.
  void Start();
  // What was handled since the last call, comma-separated.
  std::string Take();
  // Returns when `count` messages of the type were handled since the construction.
  void Await(uint32_t type, size_t count);
  // How many messages of the type were handled.
  size_t Count(uint32_t type);

  void MessageHandler(MSG_COMMON* message) override;

 private:
  const Handler handler_;
  const Writer writer_;
  std::mutex mutex_;
  std::condition_variable handled_;
  std::string written_;
  std::vector<uint32_t> types_;
};

// Posts to a queue; returns what zq__MsgCreateCommonAndSend does.
bool Post(uint32_t queue, uint32_t type, uint32_t param1 = 0, uintptr_t param2 = 0, bool inFront = false);

#endif
