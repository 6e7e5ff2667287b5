// A whole file of the device's folder hw/, in memory of its own that is neither the heap's nor the stack's.
#ifndef ZQSIM_HARDWARE_TEXT_H
#define ZQSIM_HARDWARE_TEXT_H

#include <cstddef>
#include <string_view>

class HardwareText {
 public:
  static constexpr size_t kMost = size_t{256} * 1024;

  // The file as ReadHardware has it, at most kMost bytes of it.
  explicit HardwareText(const char* name);
  HardwareText(const HardwareText&) = delete;
  HardwareText& operator=(const HardwareText&) = delete;
  ~HardwareText();

  // Empty when there is no file.
  std::string_view Text() const { return {static_cast<const char*>(memory_), length_}; }

 private:
  void* memory_;
  size_t length_ = 0;
};

#endif
