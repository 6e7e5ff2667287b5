#include "http_exchange.h"

#include <algorithm>
#include <exception>

#include "answer.h"
#include "www_trace.h"
#include "zq_thread.h"

HTTP::Exchange::Exchange(HTTP* owner, const zq_URL& url, const Callbacks& callbacks, size_t piece)
    : owner_(owner), url_(url), callbacks_(callbacks), piece_(piece) {}

namespace {

// Larger ones leave the processor's cache before they are used.
constexpr size_t kMaxPiece = 131072;

}  // namespace

bool HTTP::Exchange::Start(const std::shared_ptr<Exchange>& exchange) {
  auto share = std::make_unique<std::shared_ptr<Exchange>>(exchange);
  if (zq__beginthread(&Thread, share.get(), nullptr, __FILE__, __LINE__) == 0) return false;
  static_cast<void>(share.release());  // the thread's
  return true;
}

int32_t HTTP::Exchange::Thread(void* share) {
  const std::unique_ptr<std::shared_ptr<Exchange>> held(static_cast<std::shared_ptr<Exchange>*>(share));
  zq_ThreadSetName(0, "zqwww");
  Exchange& exchange = **held;
  exchange.thread_ = std::this_thread::get_id();
  try {
    exchange.Run();
  } catch (const std::exception&) {
    WwwFailure("%s: no memory\n", exchange.url_.hostText());
  }
  exchange.Call(exchange.callbacks_.disconnected);
  exchange.out_.set_value();
  return 0;
}

void HTTP::Exchange::Run() {
  Connection connection({}, &cancellation_, std::min(piece_, kMaxPiece));
  if (!connection.Open(url_.parts_->url, url_.parts_->route, ReadTrust())) {
    Call(callbacks_.error);
    return;
  }
  inConnected_ = true;
  Call(callbacks_.connected);
  inConnected_ = false;
  if (!request_.empty() && connection.Send(request_.data(), request_.size())) Receive(connection);
}

void HTTP::Exchange::Receive(Connection& connection) {
  const auto give = [this](const zq_HttpResponse& response) {
    if (callbacks_.data != nullptr && !cancellation_.Requested()) callbacks_.data(owner_, &response);
  };
  const ResponseRules rules{.maxBody = INT32_MAX, .endMayBeTold = url_.parts_->url.tls};
  ReceiveAnswer(connection, rules, give, url_.hostText());
}

// The owner may be gone when the callback returns.
void HTTP::Exchange::Call(zq_HttpCallback callback) {
  if (callback != nullptr && !cancellation_.Requested()) callback(owner_);
}

bool HTTP::Exchange::Keep(const char* bytes, size_t size) {
  if (!OnThread() || !inConnected_) return false;
  request_.append(bytes, size);
  return true;
}

void HTTP::Exchange::End() {
  cancellation_.Request();
  if (!OnThread()) isOut_.wait();
}
