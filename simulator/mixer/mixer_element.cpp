#include "mixer_element.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace {

constexpr std::pair<std::string_view, ElementType> kTypes[] = {
    {"integer", ElementType::kInteger}, {"integer64", ElementType::kInteger64},
    {"boolean", ElementType::kBoolean}, {"enumerated", ElementType::kEnumerated},
    {"bytes", ElementType::kBytes},
};
constexpr int64_t kHighestItem = 999;
constexpr int64_t kHighestByte = 255;

std::optional<ElementType> ReadType(std::string_view text) {
  for (const auto& [name, type] : kTypes) {
    if (name == text) return type;
  }
  return std::nullopt;
}

// Blanks around it are allowed, nothing else.
std::optional<int64_t> ReadNumber(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  int64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

void FitRange(MixerElement& element) {
  switch (element.type) {
    case ElementType::kInteger:
    case ElementType::kInteger64:
      break;
    case ElementType::kBoolean:
      element.min = 0;
      element.max = 1;
      break;
    case ElementType::kEnumerated:
      element.min = 0;
      element.max = std::min(element.max, kHighestItem);
      break;
    case ElementType::kBytes:
      element.min = 0;
      element.max = kHighestByte;
      break;
  }
  element.max = std::max(element.min, element.max);
}

}  // namespace

std::optional<MixerElement> ParseElement(const ElementTexts& texts) {
  const auto type = ReadType(texts.type);
  if (!type) return std::nullopt;
  MixerElement element;
  element.type = *type;
  element.min = ReadNumber(texts.min).value_or(element.min);
  element.max = ReadNumber(texts.max).value_or(element.max);
  FitRange(element);
  const std::string_view value = texts.value;
  const size_t comma = value.find(',');
  const std::string_view right = comma == value.npos ? value : value.substr(comma + 1);
  const std::string_view channels[] = {value.substr(0, comma), right};
  for (size_t channel = 0; channel < element.values.size(); ++channel) {
    const int64_t number = ReadNumber(channels[channel]).value_or(element.min);
    element.values[channel] = std::clamp(number, element.min, element.max);
  }
  return element;
}

std::string ChannelText(const ChannelValues& values) {
  return std::to_string(values[0]) + "," + std::to_string(values[1]);
}

bool Takes(const MixerElement& element, const ChannelValues& values) {
  return std::all_of(values.begin(), values.end(),
                     [&](int64_t value) { return value >= element.min && value <= element.max; });
}
