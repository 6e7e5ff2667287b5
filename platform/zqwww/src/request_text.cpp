#include "request_text.h"

#include <strings.h>

#include <algorithm>

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kTokenSigns = "!#$%&'*+-.^_`|~";
constexpr std::string_view kOwnFields[] = {"Host", "Content-Length", "Transfer-Encoding"};

bool IsTokenByte(unsigned char byte) {
  const unsigned char lower = byte | 0x20;
  return (lower >= 'a' && lower <= 'z') || (byte >= '0' && byte <= '9') ||
         kTokenSigns.find(static_cast<char>(byte)) != kTokenSigns.npos;
}

bool IsValueByte(unsigned char byte) {
  return byte == '\t' || (byte >= ' ' && byte != 0x7f);
}

}  // namespace

bool IsAddable(std::string_view name, std::string_view value) {
  const auto isName = [name](std::string_view own) {
    return own.size() == name.size() && strncasecmp(own.data(), name.data(), name.size()) == 0;
  };
  return !name.empty() && std::all_of(name.begin(), name.end(), IsTokenByte) &&
         std::none_of(std::begin(kOwnFields), std::end(kOwnFields), isName) &&
         std::all_of(value.begin(), value.end(), IsValueByte);
}

std::string FieldLine(std::string_view name, std::string_view value) {
  std::string line(name);
  return line.append(": ").append(value).append(kLineEnd);
}

std::optional<std::string> WithFields(std::string_view request, std::string_view fields) {
  const size_t end = request.find("\r\n\r\n");
  if (end == request.npos) return std::nullopt;
  std::string whole(request.substr(0, end + kLineEnd.size()));
  return whole.append(fields).append(request.substr(end + kLineEnd.size()));
}

std::string RequestFor(std::string_view target, std::string_view hostText, std::string_view fields,
                       std::optional<std::string_view> body) {
  std::string request = body ? "POST " : "GET ";
  request.append(target).append(" HTTP/1.1\r\n").append(FieldLine("Host", hostText));
  if (body) {
    request += FieldLine("Content-Type", "application/x-www-form-urlencoded");
    request += FieldLine("Content-Length", std::to_string(body->size()));
  }
  request.append(fields).append(kLineEnd);
  if (body) request += *body;
  return request;
}
