#include "hardware_text.h"

#include <sys/mman.h>

#include "hardware_file.h"

HardwareText::HardwareText(const char* name)
    : memory_(mmap(nullptr, kMost, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
  if (memory_ == MAP_FAILED) {
    memory_ = nullptr;
    return;
  }
  length_ = ReadHardware(name, static_cast<char*>(memory_), kMost);
}

HardwareText::~HardwareText() {
  if (memory_ != nullptr) munmap(memory_, kMost);
}
