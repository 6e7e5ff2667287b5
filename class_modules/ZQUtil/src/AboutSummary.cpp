#include "AboutSummary.h"

#include <memory>

#include "ESSIDStruct.h"
#include "ZQDateTime.h"
#include "ZQNetwork.h"
#include "script_values.h"

namespace {

struct FreeScanRecord {
  void operator()(_ESSIDStruct* record) const {
    OwnedText(record->ESSID).reset();
    ReturnToPlatform()(record);
  }
};

void GatherWireless(ZQNetwork& network, AboutSummary& summary) {
  const OwnedText configured(network.getConfiguredESSID());
  if (configured == nullptr || *configured == '\0') return;
  const std::unique_ptr<_ESSIDStruct, FreeScanRecord> record(network.GetESSIDInfo(configured.get()));
  if (record == nullptr) return;
  if (record->ESSID != nullptr) summary.network = record->ESSID;
  summary.signal = record->strength;
}

const char* Flag(bool flag) {
  return flag ? "True" : "False";
}

}  // namespace

AboutSummary GatherAboutSummary(ZQNetwork& network, ZQDateTime& dateTime) {
  AboutSummary summary;
  summary.macAddress.reset(network.getMACAddr());
  summary.address.reset(network.getCurrentIP());
  summary.wireless = network.isWireless();
  if (summary.wireless) {
    GatherWireless(network, summary);
  } else {
    summary.network = "Wired";
  }
  summary.gateway.reset(network.getGateway());
  summary.netmask.reset(network.getCurrentNetmask());
  summary.primaryDns.reset(network.getPrimaryDNS());
  summary.secondaryDns.reset(network.getSecondaryDNS());
  summary.timeZone.reset(dateTime.getTZDesc());
  summary.usesNTP = dateTime.isNTPEnabled();
  if (summary.usesNTP) {
    summary.primaryNTP.reset(dateTime.getPrimaryNTPServer());
    summary.secondaryNTP.reset(dateTime.getSecondaryNTPServer());
  }
  return summary;
}

void SetAboutProperties(void* object, const AboutSummary& summary) {
  SetTextProperty(object, "MACAddr", summary.macAddress.get());
  SetTextProperty(object, "IPAddr", summary.address.get());
  SetTextProperty(object, "IsWireless", Flag(summary.wireless));
  SetTextProperty(object, "Network", summary.network.c_str());
  SetValueProperty(object, "SignalStrength", ZQ_VALUE_FROM_INT(summary.signal));
  SetTextProperty(object, "Gateway", summary.gateway.get());
  SetTextProperty(object, "Subnet", summary.netmask.get());
  SetTextProperty(object, "DNS1", summary.primaryDns.get());
  SetTextProperty(object, "DNS2", summary.secondaryDns.get());
  SetTextProperty(object, "Timezone", summary.timeZone.get());
  SetTextProperty(object, "UseNTP", Flag(summary.usesNTP));
  SetTextProperty(object, "NTP1", summary.primaryNTP.get());
  SetTextProperty(object, "NTP2", summary.secondaryNTP.get());
}
