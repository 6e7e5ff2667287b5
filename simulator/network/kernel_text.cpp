#include "kernel_text.h"

#include <cstring>

namespace {

// Flags of a route.
constexpr std::string_view kUp = "0001";
constexpr std::string_view kUpByGateway = "0003";

// As a number in the byte order of the processors that devices have: the last byte first.
void AddHex(const Ipv4& address, KernelText* text) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  char digits[8];
  for (size_t i = 0; i < 4; ++i) {
    digits[2 * i] = kDigits[address.bytes[3 - i] >> 4];
    digits[2 * i + 1] = kDigits[address.bytes[3 - i] & 15];
  }
  text->Add({digits, sizeof(digits)});
}

struct Route {
  Ipv4 network;
  Ipv4 gateway;
  Ipv4 netmask;
};

void AddRoute(std::string_view name, const Route& route, KernelText* text) {
  text->Add(name);
  text->Add("\t");
  AddHex(route.network, text);
  text->Add("\t");
  AddHex(route.gateway, text);
  text->Add("\t");
  text->Add(route.gateway.IsNone() ? kUp : kUpByGateway);
  text->Add("\t0\t0\t0\t");
  AddHex(route.netmask, text);
  text->Add("\t0\t0\t0\n");
}

}  // namespace

void KernelText::Add(std::string_view text) {
  if (text.size() > size_ - length_) return;
  memcpy(buffer_ + length_, text.data(), text.size());
  length_ += text.size();
}

void KernelText::AddNumber(uint32_t number) {
  char digits[10];
  size_t first = sizeof(digits);
  do {
    digits[--first] = static_cast<char>('0' + number % 10);
    number /= 10;
  } while (number != 0);
  Add({digits + first, sizeof(digits) - first});
}

void AddOperstate(const InterfaceState& state, KernelText* text) {
  text->Add(state.IsRunning() ? "up\n" : "down\n");
}

void AddCarrier(const InterfaceState& state, KernelText* text) {
  text->Add(state.IsRunning() ? "1\n" : "0\n");
}

void AddWirelessLink(const InterfaceState& state, uint8_t quality, KernelText* text) {
  text->AddNumber(state.IsRunning() ? quality : 0);
  text->Add("\n");
}

void AddRouteTitle(KernelText* text) {
  text->Add("Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n");
}

void AddRoutes(std::string_view name, const InterfaceState& state, KernelText* text) {
  if (!state.up) return;
  if (!state.gateway.IsNone()) AddRoute(name, {{}, state.gateway, {}}, text);
  for (size_t i = 0; i < state.count; ++i) {
    Route route{state.addresses[i].ip, {}, state.addresses[i].netmask};
    for (int byte = 0; byte < 4; ++byte) route.network.bytes[byte] &= route.netmask.bytes[byte];
    AddRoute(name, route, text);
  }
}
