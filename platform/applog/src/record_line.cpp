#include "record_line.h"

#include <array>

namespace {

constexpr std::string_view kMissing = "-";

std::string_view Cut(std::string_view text) {
  if (text.size() <= kMaxText) return text;
  size_t size = kMaxText;
  const auto continues = [&](size_t at) { return (static_cast<unsigned char>(text[at]) & 0xc0) == 0x80; };
  while (size > kMaxText - 4 && continues(size)) --size;
  return text.substr(0, size);
}

void AppendByte(std::string& line, char byte) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const auto code = static_cast<unsigned char>(byte);
  line.append("\\x");
  line += kDigits[code >> 4];
  line += kDigits[code & 15];
}

void Append(std::string& line, std::string_view text) {
  if (text == kMissing) return AppendByte(line, text.front());
  for (const char byte : Cut(text)) {
    switch (byte) {
      case '\t':
        line += "\\t";
        break;
      case '\n':
        line += "\\n";
        break;
      case '\r':
        line += "\\r";
        break;
      case '\\':
        line += "\\\\";
        break;
      default:
        if (static_cast<unsigned char>(byte) < ' ' || byte == 0x7f) {
          AppendByte(line, byte);
        } else {
          line += byte;
        }
    }
  }
}

std::string Stamp(time_t time) {
  tm parts{};
  gmtime_r(&time, &parts);
  std::array<char, 32> text{};
  return {text.data(), strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts)};
}

}  // namespace

std::string RecordLine(time_t time, std::string_view application, std::string_view action,
                       std::optional<std::string_view> detail) {
  std::string line = Stamp(time) + "\t";
  Append(line, application);
  line += '\t';
  Append(line, action);
  line += '\t';
  if (detail) {
    Append(line, *detail);
  } else {
    line += kMissing;
  }
  return line += '\n';
}

std::string LossLine(time_t time, unsigned long lost) {
  return Stamp(time) + "\t-\trecords lost\t" + std::to_string(lost) + "\n";
}
