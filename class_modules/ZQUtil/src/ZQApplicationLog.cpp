// The activity log: records go to the optional application-log library, which owns the way to the log server.
#include <cstdlib>
#include <new>

#include "ProxyAddress.h"
#include "ZQUtil.h"
#include "ZQUtilTrace.h"
#include "script_values.h"
#include "zq_socket.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQApplicationLog";
constexpr uint32_t kMostIncoming = 1024;
constexpr int32_t kLastPort = 65535;

}  // namespace

int32_t ZQUtil::AppLog(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to AppLog\n");
  if (appLogActivity == nullptr) {
    ZQUTIL_TRACE("ZQUtil Application Logging Disabled\n");
    return 1;
  }
  const ScriptArguments arguments(argc, argv);
  if (!arguments.AllPresent(2)) return 1;
  const char* const application = arguments.Text(0);
  const char* const action = arguments.Text(1);
  if (application == nullptr || action == nullptr) return 1;
  const char* const detail = arguments.Present(2) ? arguments.Text(2) : nullptr;
  ZQUTIL_TRACE("ZQUtil Logging Application Message App: %s, Action: %s, Detail: %s\n", application, action,
               detail != nullptr ? detail : "(NULL)");
  appLogActivity(application, action, detail);
  return 1;
}

uint32_t ZQUtil::OpenSocketToProxyOrAddress(const char* host, int32_t port) try {
  ZQUTIL_TRACE("ZQUtil Opening Socket\n");
  if (host == nullptr) return 0;
  const ConnectionTarget target = ProxyOrAddress(std::getenv("http_proxy"), host, port);
  if (target.port <= 0 || target.port > kLastPort) return 0;
  char address[ZQ_ADDRESS_TEXT];
  if (!zq_SocketLookup(target.host.c_str(), address)) return 0;
  const uint32_t socket = zq_SocketOpenTcpClient(ZQUtilMsgQHandle, address,
                                                 static_cast<uint16_t>(target.port), kSourceTag, __LINE__);
  if (socket == 0) return 0;
  zq_SocketSetName(socket, "Application Logging TCP Socket");
  zq_SocketSetReceiveLimit(socket, kMostIncoming);
  return socket;
} catch (const std::bad_alloc&) {
  return 0;
}
