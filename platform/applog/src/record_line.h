// How a record stands in the file.
#ifndef APPLOG_RECORD_LINE_H
#define APPLOG_RECORD_LINE_H

#include <cstddef>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

constexpr size_t kMaxText = 1024;

// One line with its line break; texts are cut at a whole UTF-8 character and escaped as zqapplog.h says.
std::string RecordLine(time_t time, std::string_view application, std::string_view action,
                       std::optional<std::string_view> detail);
// The line that stands for so many lost records.
std::string LossLine(time_t time, unsigned long lost);

#endif
