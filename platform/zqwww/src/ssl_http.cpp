#include <cstring>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "answer.h"
#include "environment.h"
#include "request_text.h"
#include "www_trace.h"
#include "zq_memory.h"
#include "zqwww.h"

namespace {

constexpr Limits kLimits{.exchange = std::chrono::minutes(2)};
constexpr int64_t kMaxBody = 8 << 20;

}  // namespace

struct SSLHTTP::State {
  bool SendWhole(const std::string& request) { return connection->Send(request.data(), request.size()); }
  char* Answer() const;

  std::string fields;  // their lines
  std::string hostText;
  std::unique_ptr<Connection> connection;  // null: none, or used up
};

char* SSLHTTP::State::Answer() const {
  std::string body;
  const auto keep = [&body](const zq_HttpResponse& response) {
    body.append(response.chunk, response.chunkLength);
  };
  if (!ReceiveAnswer(*connection, {kMaxBody, true}, keep, hostText.c_str())) return nullptr;
  if (body.find('\0') == body.npos) return zq__newString(body.c_str(), __FILE__, __LINE__);
  WwwFailure("%s: answer refused: no text\n", hostText.c_str());
  return nullptr;
}

SSLHTTP::SSLHTTP() : state_(std::make_unique<State>()) {}

SSLHTTP::~SSLHTTP() = default;

bool SSLHTTP::AddHeader(const char* name, const char* value) try {
  if (name == nullptr || value == nullptr || !IsAddable(name, value)) return false;
  state_->fields += FieldLine(name, value);
  return true;
} catch (const std::exception&) {
  return false;
}

bool SSLHTTP::Connect(int protocol, const char* host, int port) try {
  state_->connection.reset();
  const std::optional<UrlParts> server =
      protocol == ZQWWW_TCP && host != nullptr ? ServerParts(true, host, port) : std::nullopt;
  if (!server) {
    WwwFailure("no such server: protocol %d, \"%s\", port %d\n", protocol, host != nullptr ? host : "", port);
    return false;
  }
  auto connection = std::make_unique<Connection>(kLimits, nullptr);
  if (!connection->Open(*server, RouteTo(*server, ReadProxySettings()), ReadTrust())) return false;
  state_->connection = std::move(connection);
  state_->hostText = server->hostText;
  return true;
} catch (const std::exception&) {
  return false;
}

char* SSLHTTP::Send(const char* request) try {
  if (!state_->connection || request == nullptr) return nullptr;
  const std::optional<std::string> whole = WithFields(request, state_->fields);
  char* answer = whole && state_->SendWhole(*whole) ? state_->Answer() : nullptr;
  state_->connection.reset();
  return answer;
} catch (const std::exception&) {
  state_->connection.reset();
  return nullptr;
}

char* SSLHTTP::SendBody(const char* body, const char* url, bool answer) try {
  const std::optional<UrlParts> parts = url != nullptr ? ParseUrl(url) : std::nullopt;
  if (!state_->connection || !parts) return nullptr;
  const std::optional<std::string_view> text =
      body != nullptr ? std::optional<std::string_view>(body) : std::nullopt;
  const std::string request = RequestFor(parts->target, state_->hostText, state_->fields, text);
  char* reply = state_->SendWhole(request) && answer ? state_->Answer() : nullptr;
  state_->connection.reset();
  return reply;
} catch (const std::exception&) {
  state_->connection.reset();
  return nullptr;
}
