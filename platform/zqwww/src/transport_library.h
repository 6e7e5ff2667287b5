// The transport and TLS libraries bring some thirty others with them, and loading those takes longer than all else
// that a script's start does. They are loaded by the first connection or URL, not with this library: the functions
// that are used here are defined in transport_library.cpp and pass on.
#ifndef ZQWWW_TRANSPORT_LIBRARY_H
#define ZQWWW_TRANSPORT_LIBRARY_H

#include <curl/curl.h>

using CurlSetOption = decltype(curl_easy_setopt);
using CurlGetInfo = decltype(curl_easy_getinfo);
CurlSetOption* FindCurlSetOption();
CurlGetInfo* FindCurlGetInfo();

// The two with a value of any type, which cannot be passed on.
template <typename Value>
CURLcode SetCurlOption(CURL* easy, CURLoption option, Value value) {
  return FindCurlSetOption()(easy, option, value);
}
template <typename Value>
CURLcode GetCurlInfo(CURL* easy, CURLINFO info, Value* value) {
  return FindCurlGetInfo()(easy, info, value);
}

// False, with a trace, when this system lacks them. Before any of their functions is called. Any thread.
bool LoadTransport();

#endif
