#include "wireless_calls.h"

#include <dlfcn.h>
#include <iwlib.h>
#include <sys/select.h>
#include <unistd.h>

#include <cstdarg>
#include <cstring>
#include <deque>
#include <map>
#include <utility>

namespace {

struct Failure {
  int error;
  int reported;
};

struct State {
  std::string calls;
  std::map<std::string, std::deque<Failure>> failures;
  std::optional<std::string> results;
  int resultsLength = -1;
  bool real = false;
  int socket = -1;
};

State& Now() {
  static auto* const state = new State;
  return *state;
}

template <typename Call>
Call Next(const char* name) {
  return reinterpret_cast<Call>(dlsym(RTLD_NEXT, name));
}

std::optional<Failure> TakeFailure(const std::string& call) {
  auto& failures = Now().failures[call];
  if (failures.empty()) return std::nullopt;
  const Failure failure = failures.front();
  failures.pop_front();
  return failure;
}

std::string Numbers(const iw_point& point) {
  return " " + std::to_string(point.length) + " " + std::to_string(point.flags);
}

std::string Wanted(const iw_point& point) {
  if (point.pointer == nullptr) return "";
  iw_scan_req wanted;
  memcpy(&wanted, point.pointer, sizeof wanted);
  std::string text = Numbers(point) + ": essid " + std::to_string(wanted.essid_len) + " " +
                     std::string(reinterpret_cast<const char*>(wanted.essid), wanted.essid_len) + ", bssid " +
                     std::to_string(wanted.bssid.sa_family);
  for (int i = 0; i < 6; ++i) text += (i == 0 ? " " : ":") + std::to_string(wanted.bssid.sa_data[i] & 0xFF);
  // All the rest is zero.
  memset(wanted.essid, 0, wanted.essid_len);
  wanted.essid_len = 0;
  memset(&wanted.bssid, 0, sizeof wanted.bssid);
  const iw_scan_req zero{};
  return memcmp(&wanted, &zero, sizeof zero) == 0 ? text : text + ", and more";
}

std::string Name(unsigned long number) {
  switch (number) {
    case 0x8BEB:
      return "type";
    case 0x8BF1:
      return "status";
    case SIOCGIWRANGE:
      return "range";
    case SIOCSIWSCAN:
      return "scan";
    case SIOCGIWSCAN:
      return "results";
    case SIOCGIWSTATS:
      return "statistics";
    default:
      return "request " + std::to_string(number);
  }
}

std::string Details(const std::string& name, const iwreq& request) {
  const iw_point& point = request.u.data;
  if (name == "range") return "";
  if (name == "scan") return Wanted(point);
  if (name == "type") {
    return " " + std::string(static_cast<const char*>(point.pointer), point.length) + " " +
           std::to_string(point.flags);
  }
  return Numbers(point);
}

int Answer(const std::string& bytes, iw_point& point) {
  if (point.length < bytes.size()) {
    errno = E2BIG;
    return -1;
  }
  memcpy(point.pointer, bytes.data(), bytes.size());
  const int length = Now().resultsLength;
  point.length = static_cast<uint16_t>(length < 0 ? static_cast<int>(bytes.size()) : length);
  return 0;
}

}  // namespace

std::string TakeWirelessCalls() {
  return std::exchange(Now().calls, "");
}

void FailNext(const std::string& call, int error, int reported) {
  Now().failures[call].push_back({error, reported});
}

void SetResults(const std::optional<std::string>& bytes, int length) {
  Now().results = bytes;
  Now().resultsLength = length;
}

void WaitForReal(bool real) {
  Now().real = real;
}

#define STANDS_BEFORE extern "C" __attribute__((visibility("default")))

STANDS_BEFORE int socket(int domain, int type, int protocol) noexcept {
  const bool noted = domain == AF_INET && (type & ~SOCK_CLOEXEC) == SOCK_STREAM;
  if (!noted) return Next<decltype(&socket)>("socket")(domain, type, protocol);
  Now().calls += "socket\n";
  if (const auto failure = TakeFailure("socket")) {
    errno = failure->error;
    return -1;
  }
  return Now().socket = Next<decltype(&socket)>("socket")(domain, type, protocol);
}

STANDS_BEFORE int close(int descriptor) {
  if (descriptor >= 0 && descriptor == Now().socket) {
    Now().calls += "close\n";
    Now().socket = -1;
  }
  return Next<decltype(&close)>("close")(descriptor);
}

STANDS_BEFORE int select(int count, fd_set* read, fd_set* write, fd_set* except, timeval* left) {
  const auto real = Next<decltype(&select)>("select");
  if (count != 0 || left == nullptr) return real(count, read, write, except, left);
  Now().calls += "wait " + std::to_string(left->tv_sec * 1000000 + left->tv_usec) + "\n";
  if (const auto failure = TakeFailure("wait")) {
    left->tv_usec /= 2;
    errno = failure->error;
    return -1;
  }
  if (Now().real) return real(count, read, write, except, left);
  *left = {0, 0};
  return 0;
}

STANDS_BEFORE int ioctl(int descriptor, unsigned long number, ...) noexcept {
  va_list rest;
  va_start(rest, number);
  void* const argument = va_arg(rest, void*);
  va_end(rest);
  if (number < SIOCIWFIRST || number > SIOCIWLAST || argument == nullptr) {
    return Next<decltype(&ioctl)>("ioctl")(descriptor, number, argument);
  }
  auto& request = *static_cast<iwreq*>(argument);
  const std::string name = Name(number);
  Now().calls += name + " " + std::string(request.ifr_ifrn.ifrn_name) + Details(name, request) + "\n";
  if (const auto failure = TakeFailure(name)) {
    if (failure->reported >= 0) request.u.data.length = static_cast<uint16_t>(failure->reported);
    errno = failure->error;
    return -1;
  }
  if (name == "results" && Now().results) return Answer(*Now().results, request.u.data);
  return Next<decltype(&ioctl)>("ioctl")(descriptor, number, argument);
}
