// Requests as they go over the wire, over plain values.
#ifndef ZQWWW_REQUEST_TEXT_H
#define ZQWWW_REQUEST_TEXT_H

#include <optional>
#include <string>
#include <string_view>

// Whether a header field may be added to requests: the name is a token and none that says who is asked or
// where the body ends, the value has no control characters.
bool IsAddable(std::string_view name, std::string_view value);
// "NAME: VALUE\r\n".
std::string FieldLine(std::string_view name, std::string_view value);
// The request with the lines of `fields` before its empty line; none when it has no empty line.
std::optional<std::string> WithFields(std::string_view request, std::string_view fields);
// A GET, or with a body a POST.
std::string RequestFor(std::string_view target, std::string_view hostText, std::string_view fields,
                       std::optional<std::string_view> body);

#endif
