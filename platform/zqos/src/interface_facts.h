// What the system's answers about network interfaces say.
#ifndef ZQOS_INTERFACE_FACTS_H
#define ZQOS_INTERFACE_FACTS_H

#include <ifaddrs.h>
#include <sys/socket.h>

#include <set>
#include <string>

#include "zq_socket.h"

// The interfaces that a list of addresses speaks of, each once, without the loopback. The labels of further
// addresses ("eth0:1") are the same interface.
std::set<std::string> InterfaceNames(const ifaddrs* addresses);
// False, and the text as it was, when this is no hardware address of six bytes, or only zeros.
bool MacText(const sockaddr& hardware, char text[ZQ_MAC_TEXT]);

#endif
