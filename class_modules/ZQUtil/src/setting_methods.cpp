#include "setting_methods.h"

#include <cstdio>

#include "number_text.h"

std::optional<int32_t> NumberArgument(uint32_t argc, const zq_Value* argv, SettingRange range) {
  const ScriptArguments arguments(argc, argv);
  if (!arguments.Present(0)) return std::nullopt;
  const char* const text = arguments.Text(0);
  if (text == nullptr) return std::nullopt;
  return range.Clamp(DecimalNumber(text));
}

DecimalText::DecimalText(int32_t number) {
  std::snprintf(text, sizeof text, "%d", number);
}
