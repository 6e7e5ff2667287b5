#include "ZQNetwork.h"

#include "KeyStore.h"
#include "ZQUtilTrace.h"
#include "number_text.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQNetwork";
constexpr int32_t kLastOrdinaryHardware = 8046;
constexpr int32_t kHardwareVardo2 = 2;

}  // namespace

ZQNetwork::ZQNetwork(bool /*live*/) : essidList(new zq_List("ESSID List", kSourceTag, __LINE__)) {
  MakeRoomForProxy();
  ConditionallyEnableProxy();
  ZQUTIL_TRACE("ZQUtil checking for hardware type\n");
  KeyStoreValue type;
  if (!ReadKeyStore("hwinfo.type", type)) {
    ZQUTIL_TRACE("ZQUtil could not open nvram\n");
    return;
  }
  const int32_t number = DecimalNumber(type.text);
  ZQUTIL_TRACE("ZQUtil harware type is %d\n", number);
  if (number > kLastOrdinaryHardware) {
    ZQUTIL_TRACE("This is a Vardo2\n");
    hardwareType = kHardwareVardo2;
  }
}

ZQNetwork::~ZQNetwork() {
  EmptyESSIDList();
  delete essidList;
}
