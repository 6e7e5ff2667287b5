// The wireless library is for scans alone: it is loaded by the first one. The functions of it that the module uses are
// defined in WirelessLibrary.cpp and pass on.
#ifndef ZQUTIL_WIRELESS_LIBRARY_H
#define ZQUTIL_WIRELESS_LIBRARY_H

// False, with a trace, when this system lacks it. Before any of its functions is called. Any thread.
bool LoadWirelessLibrary();

#endif
