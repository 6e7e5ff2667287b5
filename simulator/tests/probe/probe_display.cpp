// The X libraries' calls reach the device's display, which says so in hw/display.ini. Loaded by nobody here, they
// are there only with the preloaded library.
#include <cstdint>
#include <fstream>
#include <sstream>

#include "probe.h"

namespace {

using Connection = void*;

// Calls a function of that name, when there is one, on a new connection.
template <typename... Arguments>
bool Works(const char* name, Arguments... arguments) {
  auto* const open = Symbol<Connection(const char*)>("XOpenDisplay");
  auto* const call = Symbol<int(Connection, Arguments...)>(name);
  if (open == nullptr || call == nullptr) return false;
  const Connection display = open(nullptr);
  return display != nullptr && call(display, arguments...) != 0;
}

bool Says(const std::string& line) {
  std::ifstream file(Place("/hw/display.ini"));
  std::ostringstream all;
  all << file.rdbuf();
  return all.str().find("\n" + line + "\n") != std::string::npos;
}

bool ReadsTimeouts() {
  uint16_t seconds[3] = {7, 7, 7};
  return Works("DPMSGetTimeouts", &seconds[0], &seconds[1], &seconds[2]) && seconds[0] == 0 &&
         seconds[1] == 0 && seconds[2] == 0;
}

bool QueriesExtension() {
  int event = 7;
  int error = 7;
  return Works("DPMSQueryExtension", &event, &error) && event == 0 && error == 0;
}

bool Opens() {
  auto* const open = Symbol<Connection(const char*)>("XOpenDisplay");
  return open != nullptr && open(nullptr) != nullptr;
}

bool Closes() {
  auto* const open = Symbol<Connection(const char*)>("XOpenDisplay");
  auto* const close = Symbol<int(Connection)>("XCloseDisplay");
  return open != nullptr && close != nullptr && close(open(nullptr)) == 0;
}

// The server never ends, so that the handler is nobody's; without the library there is no such function.
bool TakesAnEndsHandler() {
  auto* const open = Symbol<Connection(const char*)>("XOpenDisplay");
  auto* const call = Symbol<void(Connection, void (*)(Connection, void*), void*)>("XSetIOErrorExitHandler");
  auto* const flush = Symbol<int(Connection)>("XFlush");
  if (open == nullptr || call == nullptr || flush == nullptr) return false;
  const Connection display = open(nullptr);
  call(
      display, [](Connection, void*) {}, nullptr);
  return flush(display) == 1;
}

constexpr ProbeRow kRows[] = {
    {"XOpenDisplay", Opens},
    {"XCloseDisplay", Closes},
    {"XSetIOErrorExitHandler", TakesAnEndsHandler},
    {"XFlush", [] { return Works("XFlush"); }},
    {"DPMSQueryExtension", QueriesExtension},
    {"DPMSCapable", [] { return Works("DPMSCapable"); }},
    {"DPMSEnable", [] { return Works("DPMSEnable"); }},
    {"DPMSGetTimeouts", ReadsTimeouts},
    {"DPMSSetTimeouts",
     [] {
       return Works("DPMSSetTimeouts", uint16_t{3}, uint16_t{4}, uint16_t{5}) && Says("timeouts = 3,4,5");
     }},
    {"DPMSForceLevel", [] { return Works("DPMSForceLevel", uint16_t{1}) && Says("level = standby"); }},
};

}  // namespace

std::span<const ProbeRow> DisplayRows() {
  return kRows;
}
