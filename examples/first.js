// A first script: what the device says of itself, and a few things that are still there at the next start.
//
//   build/bin/sorel --device device examples/first.js
//
// Look into the folder "device" afterwards: zqutil.ini, tour.ini, cache/, proc/blctrl, and the key store
// (build/bin/zqsim run device -- build/bin/nvram list).

const util = new ZQUtil();

print('battery    ', util.batteryPct() + ' %');
print('charger    ', util.chargeStatus());
print('tablet     ', util.isTablet());

// Settings of this script: text under a name, in tour.ini.
const starts = Number(util.getIniSetting('tour', 'starts', '0')) + 1;
print('start no.  ', starts, starts === 1 ? '(run me again)' : '(remembered from the last time)');
util.setIniSetting('tour', 'starts', String(starts));

// Cached text: a whole file at a time.
util.writeFile('greeting.txt', `Hello, this was start ${starts}.\n`);

// The device's own settings: brightness goes to the backlight and to zqutil.ini, the marker to the key store.
print('brightness ', util.getBrightness());
util.setBrightness(40 + (starts % 6) * 10);
print('first time?', util.getFirstTime());
util.setFirstTime('no');

// Writes happen behind the script's back, so that no screen ever waits for the flash; the host ends when all are done.
exit(0);
