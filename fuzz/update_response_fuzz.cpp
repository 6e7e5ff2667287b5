// Any text as the update server's answer; what is taken from it is plain and whole.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "UpdateResponse.h"
#include "zq_trace.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  zq_TraceRedirect("off", 0);
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::optional<UpdateResponse> response = ReadUpdateResponse(text.c_str());
  if (!response) return 0;
  size_t bytes = 0;
  for (const OfferedUpdate& update : response->updates) {
    bytes += update.comment.size() + update.path.size();
    // A text ends where the reader's ends.
    if (update.comment.find('\0') != std::string::npos || update.path.find('\0') != std::string::npos)
      abort();
  }
  // Nothing grows on its way: five entities of XML and character numbers are all that is expanded, and a Latin-1
  // document's characters become two bytes at the most.
  if (bytes > 2 * size) abort();
  if (response->updates.size() + response->deviceIds.size() > size) abort();
  return 0;
}
