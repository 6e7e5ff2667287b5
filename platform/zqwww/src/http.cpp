#include <algorithm>
#include <exception>

#include "http_exchange.h"

namespace {

constexpr int kDefaultPiece = 65536;
constexpr int kSmallestPiece = 1024;
constexpr int kLargestPiece = 4 << 20;

}  // namespace

HTTP::HTTP() : maxIncomingBuffer_(kDefaultPiece) {}

HTTP::~HTTP() {
  close();
}

void HTTP::close() {
  if (exchange_) exchange_->End();
}

void HTTP::setMaxIncomingBuffer(int bytes) {
  maxIncomingBuffer_ = std::clamp(bytes, kSmallestPiece, kLargestPiece);
}

int HTTP::connect(const zq_URL* url, zq_HttpDataCallback data, zq_HttpCallback error, void* /*reserved*/,
                  zq_HttpCallback connected, zq_HttpCallback disconnected, int /*flags*/) try {
  if (exchange_ || url == nullptr || !url->valid()) return -1;
  const Exchange::Callbacks callbacks{data, error, connected, disconnected};
  // In place before the thread runs, whose callbacks may ask for it.
  exchange_ = std::make_shared<Exchange>(this, *url, callbacks, static_cast<size_t>(maxIncomingBuffer_));
  if (Exchange::Start(exchange_)) return 0;
  exchange_.reset();
  return -1;
} catch (const std::exception&) {
  exchange_.reset();
  return -1;
}

int HTTP::send(const char* bytes, int size) try {
  if (!exchange_ || bytes == nullptr || size < 0) return -1;
  return exchange_->Keep(bytes, static_cast<size_t>(size)) ? size : -1;
} catch (const std::exception&) {
  return -1;
}

const zq_URL* HTTP::url() const {
  return exchange_ ? &exchange_->Url() : nullptr;
}
