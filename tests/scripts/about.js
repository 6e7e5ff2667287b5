// Version and about information, heard from a thread of the module.
load('check.js');
const util = new ZQUtil();
const names = 'MACAddr,IPAddr,IsWireless,Network,SignalStrength,Gateway,Subnet,DNS1,DNS2,Timezone,UseNTP,NTP1,NTP2,' +
  'Firmware,Software';

const version = util.GetVersion();
equal(Object.keys(version).join(), 'Firmware,Software', 'the versions');
equal(version.Firmware, '1.0.0 (boardrev: 3)', 'firmware');
if (!/^1\.0\.0 \(.+\)$/.test(version.Software)) throw new Error(version.Software);

const heard = [];
const told = (result) => {
  equal(Object.keys(result).join(), names, 'the summary');
  equal(result.Firmware, version.Firmware, 'its firmware');
  equal(result.Software, version.Software, 'its software');
  equal(result.Timezone, util.getTZ(), 'its zone');
  equal(result.UseNTP, 'True', 'its network time');
  equal(result.NTP1, util.getPrimaryNTPServer(), 'its server');
  equal(typeof result.SignalStrength, 'number', 'its signal');
  for (const [name, value] of Object.entries(result)) {
    if (name !== 'SignalStrength') equal(typeof value, 'string', name);
  }
};

// One after the other: each step goes on when the listener before was told.
const steps = [
  () => util.registerAboutListener({ onResult(result) { told(result); heard.push('one'); next(); } }),
  // One that throws is the script's own trouble.
  () => {
    util.registerAboutListener({ onResult() { heard.push('thrower'); next(); throw new Error('on purpose'); } });
  },
  // Two in a row: both threads find a listener, the last unless the first was quick.
  () => {
    let left = 2;
    const count = (name) => ({ onResult(result) { told(result); heard.push(name); left -= 1; if (left === 0) next(); } });
    util.registerAboutListener(count('first'));
    util.registerAboutListener(count('second'));
  },
  // Kept alive by the module alone.
  () => {
    util.registerAboutListener({ onResult() { heard.push('kept'); next(); } });
    gc();
  },
  () => {
    equal(refused(() => util.registerAboutListener('text')), true, 'a text');
    util.registerAboutListener();
    util.registerAboutListener(null);
    equal(heard.slice(0, 2).join(), 'one,thrower', 'heard at first');
    equal(heard.slice(4).join(), 'kept', 'heard at last');
    equal(heard.slice(2, 4).includes('second'), true, 'the last of two is heard');
    // One without the method, and one whose method is none, hear nothing.
    util.registerAboutListener({});
    util.registerAboutListener({ onResult: 7 });
    // The module ends while threads are at work.
    for (let i = 0; i < 5; i += 1) util.registerAboutListener({ onResult() {} });
    exit(0);
  },
];
const next = () => setTimeout(() => steps.shift()(), 0);
next();
