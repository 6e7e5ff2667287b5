// OpenSSL is for update packages alone, and big: it is loaded by the first one that is encrypted. The functions of it
// that the module uses are defined in CipherLibrary.cpp and pass on.
#ifndef ZQUTIL_CIPHER_LIBRARY_H
#define ZQUTIL_CIPHER_LIBRARY_H

// False, with a trace, when this system lacks it. Before any of its functions is called. Any thread.
bool LoadCipherLibrary();

#endif
