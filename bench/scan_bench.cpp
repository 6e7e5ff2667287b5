// What the way from the driver's answer to the list of networks costs, against the wireless library's own list of the
// same answer and against its reading of the events and nothing else; what a script's array of them costs; and what an
// information element costs.
#include <iwlib.h>

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "ScanResults.h"
#include "ScanStream.h"
#include "ZQNetwork.h"
#include "cell_events.h"
#include "ratio.h"
#include "run_program.h"
#include "temp_dir.h"
#include "zq_memory.h"
#include "zq_trace.h"

namespace {

constexpr int kCells = 200;
constexpr int kRounds = 2000;
constexpr int kElements = 100000;

std::vector<uint8_t> g_air;

std::string CellsText() {
  std::string text;
  const char* const securities[] = {"wpa2", "mixed", "open", "wpa3-mixed"};
  for (int i = 0; i < kCells; ++i) {
    text += "[Network " + std::to_string(i) + "]\nsecurity = " + securities[i % 4] + "\n";
  }
  return text;
}

void FillAir() {
  const std::string text = CellsText();
  g_air.resize(65535);
  EventStream stream(g_air.data(), g_air.size(), {});
  Cell cell;
  for (Cells cells(text); cells.Next(&cell);) TellCell(cell, ElementsForm::kEvents, "", stream);
  g_air.resize(stream.Length());
}

// What both are given to read.
std::vector<char> Fetch() {
  std::vector<char> buffer(g_air.size() + ScanStream::kSlack);
  iwreq request{};
  request.u.data.pointer = buffer.data();
  request.u.data.length = static_cast<uint16_t>(g_air.size());
  ioctl(-1, SIOCGIWSCAN, &request);
  return buffer;
}

size_t CountEvents(std::vector<char>& buffer) {
  stream_descr stream;
  iw_init_event_stream(&stream, buffer.data(), static_cast<int>(g_air.size()));
  iw_event event;
  size_t events = 0;
  while (iw_extract_event_stream(&stream, &event, 22) > 0) ++events;
  return events;
}

void Free(zq_List& list) {
  while (auto* const record = static_cast<_ESSIDStruct*>(list.RemoveHead())) {
    zq__free(record->ESSID, "bench", __LINE__);
    zq__free(record, "bench", __LINE__);
  }
}

void Free(wireless_scan* cell) {
  while (cell != nullptr) {
    wireless_scan* const next = cell->next;
    free(cell);
    cell = next;
  }
}

// Microseconds: the best of many rounds of each, turn by turn. What a list gives back is not counted.
struct Costs {
  double ours = std::numeric_limits<double>::infinity();
  double list = std::numeric_limits<double>::infinity();
  double events = std::numeric_limits<double>::infinity();
};

Costs Measure() {
  Costs best;
  zq_List networks("networks", "bench", __LINE__);
  for (int round = 0; round < kRounds; ++round) {
    best.ours = std::min(best.ours, 1e6 * bench::Seconds([&] {
                                      std::vector<char> buffer = Fetch();
                                      ReadScanResults(buffer.data(), g_air.size(), 22, nullptr, &networks);
                                    }));
    Free(networks);
    wireless_scan_head head{nullptr, 1};
    char name[] = "ra0";
    best.list = std::min(best.list, 1e6 * bench::Seconds([&] { iw_process_scan(-1, name, 22, &head); }));
    Free(head.result);
    best.events = std::min(best.events, 1e6 * bench::Seconds([&] {
                                          std::vector<char> buffer = Fetch();
                                          CountEvents(buffer);
                                        }));
  }
  return best;
}

// A script that prints the microseconds of the call, the best of many rounds.
std::string TimedScript(const std::string& call) {
  return "let best = Infinity;\n"
         "for (let round = 0; round < 20; ++round) {\n"
         "  const start = Date.now();\n"
         "  for (let i = 0; i < 100; ++i) " +
         call +
         ";\n"
         "  best = Math.min(best, (Date.now() - start) * 10);\n"
         "}\n"
         "print(best);\n";
}

double Timed(const std::vector<std::string>& words) {
  const ProgramResult result = RunProgram(words, {.environment = {"ZQ_TRACE=off"}});
  if (result.status != 0) throw std::runtime_error(words[0] + ": " + result.errors);
  return std::stod(result.output);
}

// What the kept list costs on its way to a script's array, in the host and on a device with the same cells, beside a
// bare callback that makes the same objects. `list` is what it costs from the driver to the list, `theirs` what the
// library's list does.
bool CompareArrays(double list, double theirs) {
  std::fflush(stdout);
  const TempDir folder("/dev/shm");
  const std::string device = folder / "device";
  const ProgramResult made = RunProgram({ZQ_SIM_PROGRAM, "create", device, "--profile", "home-phone"});
  if (made.status != 0) throw std::runtime_error(made.errors);
  WriteFile(device + "/hw/ra0/cells.ini", CellsText());
  const std::string size = std::to_string(kCells);
  const std::string scan = "if (util.getESSIDList().length !== " + size + ") throw new Error('cells');\n";
  const std::string cached = TimedScript("util.getCachedESSIDList()") + "exit(0);\n";
  WriteFile(folder / "none.js", "const util = new ZQUtil();\n" + cached);
  WriteFile(folder / "all.js", "const util = new ZQUtil();\n" + scan + cached);
  WriteFile(folder / "bare.js", TimedScript("device.networks(" + size + ")"));
  double none = std::numeric_limits<double>::infinity();
  bench::Pair array;
  for (int round = 0; round < 5; ++round) {
    none = std::min(none, Timed({SOREL_PROGRAM, "--device", device, folder / "none.js"}));
    array.ours = std::min(array.ours, Timed({SOREL_PROGRAM, "--device", device, folder / "all.js"}));
    array.theirs = std::min(array.theirs, Timed({BARE_PROGRAM, folder / "bare.js"}));
  }
  std::printf(
      "a script's array from the list: %.0f us, of no networks %.0f us; a bare callback's array %.0f us\n",
      array.ours, none, array.theirs);
  std::printf(
      "from the driver to a script's array, of the library's list: %.2f (the aim is 2.00; a bare callback's "
      "array "
      "alone: %.2f)\n",
      (list + array.ours) / theirs, array.theirs / theirs);
  return bench::Report("a script's array of 200 cells / a bare callback's", array.Ratio(), 0.75);
}

// Nanoseconds an element.
double ElementCost(const char* hex) {
  unsigned char element[64];
  size_t length = 0;
  ReadHex(hex, element, sizeof element, &length);
  _ESSIDStruct record{};
  double best = std::numeric_limits<double>::infinity();
  for (int round = 0; round < 20; ++round) {
    best = std::min(best, bench::Seconds([&] {
                      for (int i = 0; i < kElements; ++i) {
                        ZQNetwork::GetWPAParams(&record, element, static_cast<int32_t>(length));
                      }
                    }));
  }
  return best * 1e9 / kElements;
}

}  // namespace

// The driver, for the library and for us: it copies its answer.
extern "C" __attribute__((visibility("default"))) int ioctl(int, unsigned long number, ...) noexcept {
  va_list rest;
  va_start(rest, number);
  auto* const request = va_arg(rest, iwreq*);
  va_end(rest);
  if (number != SIOCGIWSCAN) {
    errno = ENOTTY;
    return -1;
  }
  if (request->u.data.length < g_air.size()) {
    errno = E2BIG;
    request->u.data.length = static_cast<uint16_t>(g_air.size());
    return -1;
  }
  memcpy(request->u.data.pointer, g_air.data(), g_air.size());
  request->u.data.length = static_cast<uint16_t>(g_air.size());
  return 0;
}

int main() {
  zq_TraceRedirect("off", INT_MAX);
  FillAir();
  std::vector<char> buffer = Fetch();
  std::printf("%d cells, %zu events, %zu bytes\n", kCells, CountEvents(buffer), g_air.size());
  const Costs costs = Measure();
  std::printf(
      "to the list %.1f us; the library's list %.1f us, its reading of the events alone %.1f us (%.2f)\n",
      costs.ours, costs.list, costs.events, costs.ours / costs.events);
  const bool kept =
      bench::Report("200 cells to the list against the library's own", costs.ours / costs.list, 2.0);
  std::printf("an element: WPA2 %.0f ns, WPA %.0f ns, another vendor's %.0f ns\n",
              ElementCost("3014 0100 000fac04 0100 000fac04 0100 000fac02 0000"),
              ElementCost("dd16 0050f201 0100 0050f202 0100 0050f202 0100 0050f202"),
              ElementCost("dd18 0050f202 0101 80 00 03a40000 27a40000 42435e00 62322f00"));
  return CompareArrays(costs.ours, costs.list) && kept ? 0 : 1;
}
