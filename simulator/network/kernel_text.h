// What the kernel's files say about an interface in a given state. No allocation.
#ifndef ZQSIM_KERNEL_TEXT_H
#define ZQSIM_KERNEL_TEXT_H

#include <cstddef>
#include <string_view>

#include "interface_state.h"

// Text that is put together in a buffer of the caller's; what does not fit is left out whole.
class KernelText {
 public:
  KernelText(char* buffer, size_t size) : buffer_(buffer), size_(size) {}
  void Add(std::string_view text);
  void AddNumber(uint32_t number);
  std::string_view View() const { return {buffer_, length_}; }

 private:
  char* buffer_;
  size_t size_;
  size_t length_ = 0;
};

// /sys/class/net/NAME/operstate and carrier.
void AddOperstate(const InterfaceState& state, KernelText* text);
void AddCarrier(const InterfaceState& state, KernelText* text);
// wireless/link below the radio's folder: the link's quality; 0 while it is down.
void AddWirelessLink(const InterfaceState& state, uint8_t quality, KernelText* text);
// /proc/net/route: its first line, and an interface's lines: its default route, when it has one, and those to the
// networks of its addresses. None while the interface is down.
void AddRouteTitle(KernelText* text);
void AddRoutes(std::string_view name, const InterfaceState& state, KernelText* text);

#endif
