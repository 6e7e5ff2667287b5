// A setting's value: how it stands in a file and what it says as a number, as yes or no, and cut to a size.
#ifndef ZQ_INI_VALUE_H
#define ZQ_INI_VALUE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Without the blanks (space, tab, CR, VT, FF) at both ends.
std::string_view IniTrim(std::string_view text);
// Equal without regard to ASCII case.
bool IniSameName(std::string_view a, std::string_view b);

// The value as it stands in a file: itself, or in double quotes when blanks at an end, a line break or a
// leading quote would otherwise be lost or become something else.
std::string IniQuote(std::string_view value);
// The value that a trimmed text in a file stands for. Text that only begins like a quoted one is taken as it
// is, and so is a backslash before any other character than n, r, t, " and \.
std::string IniUnquote(std::string_view text);

// The decimal number at the start, limited to the range of int32_t; none when there is no digit.
std::optional<int32_t> IniNumber(std::string_view value);
bool IniAffirmative(std::string_view value);
// How many bytes of the text to copy into `size`: all, or as many as make whole UTF-8 characters. Bytes that
// are no UTF-8 are cut where the room ends.
size_t IniCut(std::string_view text, size_t size);

#endif
