#include "number_text.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

int32_t DecimalNumber(const char* text) {
  using Limits = std::numeric_limits<int32_t>;
  return static_cast<int32_t>(
      std::clamp<long long>(std::strtoll(text, nullptr, 10), Limits::min(), Limits::max()));
}
