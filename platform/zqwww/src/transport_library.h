// The transport and TLS libraries bring some thirty others with them, and loading those takes longer than all else
// that a script's start does. They are loaded by the first connection or URL, not with this library: the functions
// that are used here are defined in transport_library.cpp and pass on.
#ifndef ZQWWW_TRANSPORT_LIBRARY_H
#define ZQWWW_TRANSPORT_LIBRARY_H

// False, with a trace, when this system lacks them. Before any of their functions is called. Any thread.
bool LoadTransport();

#endif
