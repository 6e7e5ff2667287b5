#include "interface_state.h"

#include <cstring>

#include "error_name.h"
#include "setting_lines.h"
#include "words.h"

namespace {

constexpr Ipv4 kUsualNetmask{{255, 255, 255, 0}};
constexpr std::string_view kBlanks = " \t";

// In the order of InterfaceRequest.
constexpr std::string_view kRequests[kInterfaceRequests] = {"list",    "flags",    "address",
                                                            "netmask", "hardware", "index"};

void SetFlag(std::string_view value, std::string_view yes, std::string_view no, bool* flag) {
  if (value == yes || value == no) *flag = value == yes;
}

bool SetLabel(std::string_view name, char (&label)[kInterfaceLabel]) {
  if (name.empty() || name.size() >= kInterfaceLabel) return false;
  memcpy(label, name.data(), name.size());
  label[name.size()] = '\0';
  return true;
}

std::string_view TakeWord(std::string_view& text) {
  text = WithoutBlanks(text);
  size_t end = text.find_first_of(kBlanks);
  if (end == text.npos) end = text.size();
  const std::string_view word(text.data(), end);
  text.remove_prefix(end);
  return word;
}

// The first place is the interface's own address, which comes at the end of the file's reading.
void AddAlias(std::string_view value, InterfaceState* state) {
  if (state->count == kMostAddresses) return;
  InterfaceAddress alias;
  alias.netmask = kUsualNetmask;
  const std::string_view label = TakeWord(value);
  const std::string_view ip = TakeWord(value);
  const std::string_view netmask = TakeWord(value);
  if (!SetLabel(label, alias.label) || !ReadIpv4(ip, &alias.ip)) return;
  if (!netmask.empty() && !ReadIpv4(netmask, &alias.netmask)) return;
  state->addresses[state->count++] = alias;
}

void SetLink(std::string_view key, std::string_view value, InterfaceState* state) {
  if (key == "up") SetFlag(value, "yes", "no", &state->up);
  if (key == "cable") SetFlag(value, "plugged", "unplugged", &state->link);
  if (key == "associated") SetFlag(value, "yes", "no", &state->link);
}

void SetAddress(std::string_view key, std::string_view value, InterfaceState* state) {
  InterfaceAddress& own = state->addresses[0];
  if (key == "ip") ReadIpv4(value, &own.ip);
  if (key == "netmask") ReadIpv4(value, &own.netmask);
  if (key == "gateway") ReadIpv4(value, &state->gateway);
  if (key == "alias") AddAlias(value, state);
}

void SetError(std::string_view key, std::string_view value, InterfaceState* state) {
  for (size_t i = 0; i < kInterfaceRequests; ++i) {
    if (key == kRequests[i]) ReadErrorName(value, &state->errors[i]);
  }
}

}  // namespace

bool ReadIpv4(std::string_view text, Ipv4* address) {
  Ipv4 read;
  for (int i = 0; i < 4; ++i) {
    if ((text.find('.') == text.npos) != (i == 3)) return false;
    uint32_t number = 0;
    const std::string_view part = TakeUntil(text, '.');
    if (part.size() > 3 || !ReadDecimal(part, 256, &number) || number > 255) return false;
    read.bytes[i] = static_cast<uint8_t>(number);
  }
  *address = read;
  return true;
}

InterfaceState ParseInterface(std::string_view name, std::string_view text) {
  InterfaceState state;
  state.count = 1;
  state.addresses[0].netmask = kUsualNetmask;
  const bool named = SetLabel(name, state.addresses[0].label);
  std::string_view section;
  for (SettingLines lines(text); lines.Next();) {
    if (lines.IsTitle()) {
      section = lines.Title();
    } else if (section == "link") {
      SetLink(lines.Key(), lines.Value(), &state);
    } else if (section == "address") {
      SetAddress(lines.Key(), lines.Value(), &state);
    } else if (section == "requests") {
      SetError(lines.Key(), lines.Value(), &state);
    }
  }
  if (!named || state.addresses[0].ip.IsNone()) {
    --state.count;
    memmove(state.addresses, state.addresses + 1, state.count * sizeof(state.addresses[0]));
  }
  return state;
}
