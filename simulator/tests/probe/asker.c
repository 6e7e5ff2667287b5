// A library that loads another by its name alone, which lies beside this one and nowhere else.
#include <dlfcn.h>

__attribute__((visibility("default"))) int zqsim_probe_ask(void);
int zqsim_probe_ask(void) { return dlopen("libzqsim_probe_leaf.so", RTLD_NOW) != 0; }
