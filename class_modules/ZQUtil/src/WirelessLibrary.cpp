#include "WirelessLibrary.h"

#include <iwlib.h>

#include "zq_lazy_library.h"

namespace {

zq_LazyLibrary g_wireless("libiw.so.30");

}  // namespace

bool LoadWirelessLibrary() {
  return g_wireless.Load();
}

extern "C" {

ZQ_PASS_ON(g_wireless, int, iw_get_range_info, (int socket, const char* interface, iwrange* range),
           (socket, interface, range))
ZQ_PASS_ON(g_wireless, void, iw_init_event_stream, (stream_descr * stream, char* data, int length),
           (stream, data, length))
ZQ_PASS_ON(g_wireless, int, iw_extract_event_stream, (stream_descr * stream, iw_event* event, int version),
           (stream, event, version))
ZQ_PASS_ON(g_wireless, void, iw_print_key,
           (char* text, int size, const unsigned char* key, int length, int flags),
           (text, size, key, length, flags))

}  // extern "C"
