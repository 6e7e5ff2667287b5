// The update server's answer, as plain values.
#ifndef ZQUTIL_UPDATE_RESPONSE_H
#define ZQUTIL_UPDATE_RESPONSE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct OfferedUpdate {
  int32_t id;
  std::string comment;
  std::string path;  // URL of the package
  bool forced;
};

struct UpdateResponse {
  std::vector<int32_t> deviceIds;  // each identity that the server gives this device
  std::vector<OfferedUpdate> updates;
};

// Reads
//
//   <any><deviceid yourId="34"/><update forced="true" id="12" comment="..." path="http://..."/>...</any>
//
// both in their document's order, element names in any case. An update that lacks one of its attributes and a device id
// that is no number are left out, as is every other element. Nothing when the text is no sound document of XML.
std::optional<UpdateResponse> ReadUpdateResponse(const char* xml);

#endif
