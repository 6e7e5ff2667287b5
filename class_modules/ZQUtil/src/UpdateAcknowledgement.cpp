#include "UpdateAcknowledgement.h"

#include "KeyStore.h"
#include "UpdateServer.h"
#include "ZQUpdateInstall.h"
#include "ZQUtilTrace.h"
#include "xmlparser.h"
#include "zq_memory.h"
#include "zq_socket.h"
#include "zqwww.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/UpdateAcknowledgement";

std::string UpdateDoneElement(int32_t updateId, int32_t deviceId) {
  dom_Document* const document = dom__create("updateDone", kSourceTag, __LINE__);
  dom_Element* const element = dom_GetRoot(document);
  dom_SetIntegerAttribute(element, "deviceId", deviceId);
  dom_SetIntegerAttribute(element, "updateId", updateId);
  _ZqString* const text = zq_StringCreate(64);
  dom_Serialise(element, text);
  std::string serialised = zq_StringText(text);
  zq_StringDestroy(text);
  dom__free(document, kSourceTag, __LINE__);
  return serialised;
}

void QueueAcknowledgement(int32_t updateId, int32_t deviceId) {
  KeyStore store;
  if (!store.Ok()) return;
  store.Write(kPendingAcknowledgementKey,
              (std::to_string(updateId) + "&" + std::to_string(deviceId)).c_str());
}

}  // namespace

std::string AcknowledgementBody(int32_t updateId, int32_t deviceId) {
  return "<xml version=\"1.0\">\n" + UpdateDoneElement(updateId, deviceId) + "</xml>\n";
}

std::string AcknowledgementRequest(const std::string& host, int32_t port, const std::string& body) {
  return "POST /zqapplog HTTP/1.1\r\nContent-Type:application/x-www-form-urlencoded\r\nHost: " + host + ":" +
         std::to_string(port) + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

void AcknowledgeUpdate(int32_t updateId, int32_t deviceId) {
  const TransportUse transport;
  SSLHTTP http;
  AddUpdateHeaders(http);
  char mac[ZQ_MAC_TEXT];
  zq_GetMACAddress(mac);
  http.AddHeader("MAC-Addr", mac);
  const UpdateServer server = ConfiguredUpdateServer();
  const std::string body = AcknowledgementBody(updateId, deviceId);
  ZQUTIL_TRACE("Application Logging sending Request\n");
  const std::string request = AcknowledgementRequest(server.host, server.port, body);
  if (ConnectToUpdateServer(http, server)) {
    zq__free(http.Send(request.c_str()), kSourceTag, __LINE__);
    return;
  }
  QueueAcknowledgement(updateId, deviceId);
  ZQUTIL_TRACE("ZQUtil Queuing Download Success for updateId=%d\n", updateId);
  ZQUTIL_TRACE("ZQUtil failed to connect to %s\n", server.host.c_str());
}
