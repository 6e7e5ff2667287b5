// What the "about" screen shows of network and clock.
#ifndef ZQUTIL_ABOUT_SUMMARY_H
#define ZQUTIL_ABOUT_SUMMARY_H

#include <cstdint>
#include <string>

#include "OwnedText.h"

class ZQDateTime;
class ZQNetwork;

// A text that could not be had is null, and is shown as "".
struct AboutSummary {
  OwnedText macAddress;
  OwnedText address;
  bool wireless = false;
  std::string network;  // its name, or "Wired"
  int32_t signal = 0;   // of the wireless network, 0 without one
  OwnedText gateway;
  OwnedText netmask;
  OwnedText primaryDns;
  OwnedText secondaryDns;
  OwnedText timeZone;
  bool usesNTP = false;
  OwnedText primaryNTP;  // null when the clock is not set by servers
  OwnedText secondaryNTP;
};

// Blocks as long as the kernel takes to answer; calls no script. Any thread.
AboutSummary GatherAboutSummary(ZQNetwork& network, ZQDateTime& dateTime);

// Sets a property of the script object for each, from "MACAddr" to "NTP2", in this order.
void SetAboutProperties(void* object, const AboutSummary& summary);

#endif
