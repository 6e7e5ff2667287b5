// The file that records are appended to.
#ifndef APPLOG_RECORD_FILE_H
#define APPLOG_RECORD_FILE_H

#include <cstddef>
#include <string>

constexpr size_t kMaxFile = size_t{1} << 20;

// Appends whole lines; a file that would grow beyond its limit first makes way for a new one. False, with
// errno, when the disk refuses; then part of the lines may be there.
bool AppendRecords(const std::string& path, const std::string& lines);

#endif
