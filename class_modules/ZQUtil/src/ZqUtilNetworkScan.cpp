// The networks in the air, for scripts.
#include <strings.h>

#include "ESSIDListTurn.h"
#include "ESSIDTexts.h"
#include "OwnedText.h"
#include "ZQNetwork.h"
#include "ZQUtil.h"
#include "ZQUtilTrace.h"
#include "listeners.h"
#include "script_values.h"

namespace {

constexpr char kListenerProperty[] = "getessidListener";

// A record that nobody else owns, with its name.
class OwnedRecord {
 public:
  explicit OwnedRecord(_ESSIDStruct* record)
      : record_(record), name_(record != nullptr ? record->ESSID : nullptr) {}
  const char* Name() const { return name_.get(); }
  const _ESSIDStruct* operator->() const { return record_.get(); }

 private:
  const std::unique_ptr<_ESSIDStruct, ReturnToPlatform> record_;
  const OwnedText name_;
};

bool SameName(const char* one, const char* other) {
  return one != nullptr && other != nullptr && strcasecmp(one, other) == 0;
}

// What is known of the network that the device is set to; all of it "" and 0 for none.
struct CurrentNetwork {
  const char* name = "";
  int32_t signal = 0;
  int32_t encrypted = 0;
  int32_t connected = 0;
};

void SetCurrentNetwork(void* object, const CurrentNetwork& current) {
  if (object == nullptr) return;
  SetTextProperty(object, "Name", current.name);
  SetValueProperty(object, "Signal", ZQ_VALUE_FROM_INT(current.signal));
  SetValueProperty(object, "Encrypted", ZQ_VALUE_FROM_INT(current.encrypted));
  SetValueProperty(object, "Connected", ZQ_VALUE_FROM_INT(current.connected));
}

// Whether the device is connected to this network.
bool IsConnected(ZQNetwork& network, const _ESSIDStruct& record, const char* configured) {
  if (!SameName(configured, record.ESSID) || !network.ConnectedStatus()) return false;
  ZQUTIL_TRACE("Connected\n");
  return true;
}

// A new object for the record; null when the host makes none.
void* NewEntry(const _ESSIDStruct& record, bool connected) {
  const AuthenticationTexts authentication = AuthenticationOf(record);
  const char* const ciphers = CiphersOf(record);
  ZQUTIL_TRACE("Authtype=%s\n", authentication.authType);
  ZQUTIL_TRACE("WPAType=%s\n", authentication.wpaType);
  ZQUTIL_TRACE("Enctype=%s\n", ciphers);
  ZQUTIL_TRACE("=====\n");
  void* const entry = NewScriptObject();
  if (entry == nullptr) return nullptr;
  SetTextProperty(entry, "Name", record.ESSID);
  SetValueProperty(entry, "Signal", ZQ_VALUE_FROM_INT(record.strength));
  SetValueProperty(entry, "Encrypted", ZQ_VALUE_FROM_INT(record.encrypted != 0 ? 1 : 0));
  SetValueProperty(entry, "Connected", ZQ_VALUE_FROM_INT(connected ? 1 : 0));
  SetTextProperty(entry, "AuthType", authentication.authType);
  SetTextProperty(entry, "EncType", ciphers);
  SetTextProperty(entry, "WPAType", authentication.wpaType);
  return entry;
}

void FillArray(void* array, ZQNetwork& network, const zq_List& list) {
  const OwnedText configured(network.getConfiguredESSID());
  uint32_t index = 0;
  for (const auto* at = list.First(); at != nullptr; at = list.Next(at)) {
    const auto& record = *static_cast<const _ESSIDStruct*>(list.Record(at));
    ZQUTIL_TRACE("=====Returning ESSID %s\n", record.ESSID != nullptr ? record.ESSID : "(NULL)");
    void* const entry = NewEntry(record, IsConnected(network, record, configured.get()));
    if (entry == nullptr) continue;
    zq_Value value = ObjectValue(entry);
    if (const auto setElement = engine::SetElement()) setElement(array, index, &value);
    ++index;
  }
}

}  // namespace

int32_t ZQUtil::GetESSIDList(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval,
                             bool cached, bool flag) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetESSIDList\n");
  const auto newArray = engine::NewArray();
  void* const array = newArray != nullptr ? newArray(0, nullptr) : nullptr;
  if (array == nullptr || network == nullptr) return 1;
  // The list is empty as long as a scan of the queue thread is under way, and a script that wants what there is does not
  // wait for that.
  const ESSIDListTurn turn(cached ? ESSIDListTurn::Use::kReads : ESSIDListTurn::Use::kScans);
  if (turn.Mine()) {
    const zq_List* const list = network->getESSIDList(true, cached, nullptr, flag);
    if (list != nullptr) FillArray(array, *network, *list);
  }
  if (rval != nullptr) *rval = ObjectValue(array);
  return 1;
}

int32_t ZQUtil::GetESSID(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetESSID\n");
  void* const object = ReturnNewObject(rval);
  if (network == nullptr) return 1;
  const OwnedText configured(network->getConfiguredESSID());
  // The radio of a device that is set up for none may have joined one all the same.
  const bool any = configured != nullptr && *configured != '\0';
  const OwnedRecord record(any ? network->GetESSIDInfo(configured.get()) : nullptr);
  if (record.Name() != nullptr) {
    ZQUTIL_TRACE("ZQUtil GetESSID testing %s (%s)\n", record.Name(), configured.get());
    if (SameName(record.Name(), configured.get())) {
      ZQUTIL_TRACE("ZQUtil GetESSID returning %s (Strength %d)\n", record.Name(), record->strength);
      SetCurrentNetwork(object, {record.Name(), record->strength, record->encrypted != 0 ? 1 : 0,
                                 network->ConnectedStatus() ? 1 : 0});
      return 1;
    }
  }
  SetCurrentNetwork(object, {});
  return 1;
}

int32_t ZQUtil::BackgroundGetESSIDList(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to BackgroundGetESSIDList\n");
  const ListenerChange change = ChangeListener(argc, argv, kListenerProperty, getessidListener);
  if (change != ListenerChange::kKept) return change == ListenerChange::kForgotten ? 1 : 0;
  ZQUTIL_TRACE("ZQUtil Messaging thread to get SSIDs %d\n", static_cast<int32_t>(ZQUtilMsgQHandle));
  PostToModule(kMsgBackgroundScan, 0);
  return 1;
}
