// An HTTP object's exchange, which outlives the object by as much as its thread needs.
#ifndef ZQWWW_HTTP_EXCHANGE_H
#define ZQWWW_HTTP_EXCHANGE_H

#include <atomic>
#include <future>
#include <string>
#include <thread>

#include "cancellation.h"
#include "response_reader.h"
#include "zq_url_parts.h"

class Connection;

// Script and queue threads make and end it, the library's thread runs it.
class HTTP::Exchange {
 public:
  struct Callbacks {
    zq_HttpDataCallback data;
    zq_HttpCallback error;
    zq_HttpCallback connected;
    zq_HttpCallback disconnected;
  };

  Exchange(HTTP* owner, const zq_URL& url, const Callbacks& callbacks, size_t piece);

  // Starts the thread, which keeps a share of the exchange. False when the system gives none.
  static bool Start(const std::shared_ptr<Exchange>& exchange);
  // No callback begins after this. Returns when the thread is out of the callbacks, unless it is the caller.
  void End();
  // Within the connected callback: keeps bytes for the request. False anywhere else.
  bool Keep(const char* bytes, size_t size);

  const zq_URL& Url() const { return url_; }

 private:
  static int32_t Thread(void* share);
  void Run();
  void Receive(Connection& connection);
  void Call(zq_HttpCallback callback);
  bool OnThread() const { return thread_.load() == std::this_thread::get_id(); }

  HTTP* const owner_;
  const zq_URL url_;
  const Callbacks callbacks_;
  const size_t piece_;
  Cancellation cancellation_;
  std::atomic<std::thread::id> thread_{};
  bool inConnected_ = false;  // the exchange's thread only
  std::string request_;
  std::promise<void> out_;
  std::shared_future<void> isOut_ = out_.get_future();
};

#endif
