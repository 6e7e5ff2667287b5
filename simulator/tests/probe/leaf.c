// A library that others load.
__attribute__((visibility("default"))) int zqsim_probe_leaf(void);
int zqsim_probe_leaf(void) { return 1; }
