#include "UpdateResponse.h"

#include <strings.h>

#include <memory>

#include "number_text.h"
#include "xmlparser.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/UpdateResponse";

struct FreeDocument {
  void operator()(dom_Document* document) const { dom__free(document, kSourceTag, __LINE__); }
};

bool Named(const dom_Element* element, const char* name) {
  return strcasecmp(dom_GetName(element), name) == 0;
}

void AddUpdate(const dom_Element* element, UpdateResponse& response) {
  const char* const forced = dom_GetAttribute(element, "forced");
  const char* const id = dom_GetAttribute(element, "id");
  const char* const comment = dom_GetAttribute(element, "comment");
  const char* const path = dom_GetAttribute(element, "path");
  if (forced == nullptr || id == nullptr || comment == nullptr || path == nullptr) return;
  response.updates.push_back({DecimalNumber(id), comment, path, strcasecmp(forced, "true") == 0});
}

}  // namespace

std::optional<UpdateResponse> ReadUpdateResponse(const char* xml) {
  const std::unique_ptr<dom_Document, FreeDocument> document(dom__parse(xml, kSourceTag, __LINE__));
  if (document == nullptr) return std::nullopt;
  UpdateResponse response;
  for (dom_Element* element = dom_GetFirstChild(dom_GetRoot(document.get())); element != nullptr;
       element = dom_GetNextSibling(element)) {
    int32_t deviceId = 0;
    if (Named(element, "update")) {
      AddUpdate(element, response);
    } else if (Named(element, "deviceid") && dom_GetIntegerAttribute(element, "yourId", &deviceId)) {
      response.deviceIds.push_back(deviceId);
    }
  }
  return response;
}
