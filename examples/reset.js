// Takes a device back to how it was made: settings, keys and cache go, and it starts anew. What the trigger file asks
// for is done by the device's system scripts.
//
//   build/bin/sorel --device device examples/reset.js

new ZQUtil().factoryReset();
print('factoryReset()');
exit(0);
