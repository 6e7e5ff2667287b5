// The network methods of the script class that change something. They answer nothing. Too few arguments, one of them void
// or null, one that is no text, or no network object, and nothing is changed; the script sees no difference.
#include <string>
#include <vector>

#include "ESSIDListTurn.h"
#include "ZQNetwork.h"
#include "ZQUtil.h"
#include "ZQUtilTrace.h"
#include "number_text.h"
#include "script_values.h"

namespace {

// The arguments of a set-up as texts that may be changed in place. Of one that is not there it has what the engine takes
// a missing one for: whoever must have it looks first.
class SetUpTexts {
 public:
  SetUpTexts(const ScriptArguments& arguments, uint32_t wanted) : wanted_(wanted) {
    while (Taken() < wanted) {
      const char* const text = arguments.TextOrFiller(Taken());
      if (text == nullptr) break;
      texts_.emplace_back(text);
    }
  }

  // How many were converted before the first that could not be.
  uint32_t Taken() const { return static_cast<uint32_t>(texts_.size()); }
  bool Complete() const { return Taken() == wanted_; }
  char* operator[](uint32_t index) { return texts_[index].data(); }

 private:
  const uint32_t wanted_;
  std::vector<std::string> texts_;
};

}  // namespace

int32_t ZQUtil::SetFirstTime(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  if (const char* const text = ScriptArguments(argc, argv).PresentText(0))
    AsyncNVRAMWrite("net.firsttime", text);
  return 1;
}

int32_t ZQUtil::SetProxy(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to SetProxy\n");
  const ScriptArguments arguments(argc, argv);
  if (network == nullptr || !arguments.AllPresent(1)) return 1;
  SetUpTexts texts(arguments, 1);
  if (texts.Complete()) network->setProxy(texts[0]);
  return 1;
}

int32_t ZQUtil::SetProxyEnabled(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to SetProxyEnabled\n");
  const char* const text = ScriptArguments(argc, argv).PresentText(0);
  if (network != nullptr && text != nullptr) network->setProxyEnabled(SaysYes(text));
  return 1;
}

int32_t ZQUtil::SetWiredNetworkDHCP(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/,
                                    zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to SetWiredNetworkDHCP\n");
  if (network != nullptr) network->setWiredNetworkDHCP();
  return 1;
}

int32_t ZQUtil::SetWiredNetworkStatic(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to SetWiredNetworkStatic\n");
  constexpr uint32_t kRequired = 5;
  const ScriptArguments arguments(argc, argv);
  if (network == nullptr || !arguments.AllPresent(kRequired)) return 1;
  SetUpTexts texts(arguments, kRequired);
  if (texts.Complete()) network->setWiredNetworkStatic(texts[0], texts[1], texts[2], texts[3], texts[4]);
  return 1;
}

int32_t ZQUtil::SetWirelessNetworkDHCP(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to SetWirelessNetworkDHCP\n");
  constexpr uint32_t kRequired = 6;
  const ScriptArguments arguments(argc, argv);
  if (network == nullptr || !arguments.AllPresent(kRequired)) return 1;
  SetUpTexts texts(arguments, kRequired + 1);
  if (!texts.Complete()) {
    ZQUTIL_TRACE("ZQUtil SetWirelessNetworkDHCP missing argument %u\n", texts.Taken());
    return 1;
  }
  ESSIDListTurn turn(ESSIDListTurn::Use::kLooksUp);
  if (network->essidList->Count() == 0) turn.TurnsToScan();
  network->setWirelessNetworkDHCP(texts[0], texts[1], texts[2], texts[3], texts[4], DecimalNumber(texts[5]),
                                  texts[6]);
  return 1;
}

int32_t ZQUtil::SetWirelessNetworkStatic(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to SetWirelessNetworkStatic\n");
  constexpr uint32_t kRequired = 11;
  const ScriptArguments arguments(argc, argv);
  if (network == nullptr || !arguments.AllPresent(kRequired)) return 1;
  SetUpTexts texts(arguments, kRequired + 1);
  if (texts.Taken() == 0) {
    ZQUTIL_TRACE("ZQUtil SetWirelessNetworkStatic missing argument 0\n");
    return 1;
  }
  if (texts.Complete()) {
    ESSIDListTurn turn(ESSIDListTurn::Use::kLooksUp);
    if (network->essidList->Count() == 0) turn.TurnsToScan();
    network->setWirelessNetworkStatic(texts[0], texts[1], texts[2], texts[3], texts[4], texts[5], texts[6],
                                      texts[7], texts[8], texts[9], DecimalNumber(texts[10]), texts[11]);
  }
  // Success, too, is followed by the whole row of complaints, and an argument that is no text by those of all before it:
  // readers of the trace count them.
  for (uint32_t missing = texts.Complete() ? kRequired : texts.Taken(); missing > 0; --missing) {
    ZQUTIL_TRACE("ZQUtil SetWirelessNetworkStatic missing argument %u\n", missing);
  }
  return 1;
}
