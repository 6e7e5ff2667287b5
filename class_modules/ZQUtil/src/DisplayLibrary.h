// The X libraries are for standby alone, and big: they are loaded by the first one. The functions of them that the
// module uses are defined in DisplayLibrary.cpp and pass on.
#ifndef ZQUTIL_DISPLAY_LIBRARY_H
#define ZQUTIL_DISPLAY_LIBRARY_H

// False, with a trace, when this system lacks them. Before any of their functions is called. Any thread.
bool LoadDisplayLibrary();

#endif
