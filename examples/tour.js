// A tour of the class: calls its methods, once and more, and shows what came back.
//
//   build/bin/sorel --device device examples/tour.js
//
// tools/tour runs it too, shows below each call what changed on the device, and ends with factoryReset.

const util = new ZQUtil();

// Longer answers are cut in the middle.
const WIDTH = 100;
// Writes happen behind the script's back; this many milliseconds after a call its files are there.
const SETTLE = 80;

function shown(value) {
  const text = value === undefined ? '' : JSON.stringify(value);
  return text.length <= WIDTH ? text : `${text.slice(0, WIDTH - 25)} … ${text.slice(-20)}`;
}

function listener(name, ...events) {
  const heard = {toString: () => name};
  for (const event of events) {
    heard[event] = (...values) => print(`    -> ${event}(${values.map(shown).join(', ')})`);
  }
  return heard;
}

const connectivity = listener('listener', 'onAssociation', 'onFailedAssociation', 'onBeginDHCP', 'onDoneDHCP',
                              'onBeginConnectivityCheck', 'onConnectSuccess', 'onConnectFailure');
const networks = listener('listener', 'onSSIDList');
const updates = listener('listener', 'forcedUpdateAvailable', 'onDownloading', 'onInstalling', 'onDownloadFailed');
const about = listener('listener', 'onResult');

// [method, arguments...] in the order of the tour; a number waits for what the call before it sets going.
const starts = Number(util.getIniSetting('tour', 'starts', '0')) + 1;
/** @type {any[]} */
const steps = [
  ['GetVersion'], ['isTablet'], ['batteryPct'], ['chargeStatus'],

  ['getIniSetting', 'tour', 'starts', '0'], ['setIniSetting', 'tour', 'starts', String(starts)],
  ['writeFile', 'greeting.txt', `Hello, this was start ${starts}.\n`],
  ['writeFile', 'passing.txt', 'soon gone'], ['deleteFile', 'passing.txt'],
  ['setIniSetting', 'passing', 'key', 'value'], ['deleteIniFile', 'passing', ''],
  ['utf8Encode', 'caf\u00e9'], ['getFirstTime'], ['setFirstTime', 'no'],

  ['getPhoneVolume'], ['setPhoneVolume', 40], ['MutePhone'], ['UnmutePhone'], ['getMediaVolume'],
  ['setMediaVolume', '60'], ['getMicVolume'], ['setMicVolume', 70], ['MuteMic'], ['UnmuteMic'],

  ['getBrightness'], ['setBrightness', 40 + (starts % 6) * 10], ['getContrast'], ['setContrast', 5], ['getDimMode'],
  ['setDimMode', 'true'], 1500, ['setDimMode', 'false'], ['screenStandby'],

  ['getTZList'], ['getTZ'], ['setTZ', '/usr/share/zoneinfo/US/Eastern'], ['getTZ'], ['getNTPEnabled'],
  ['setNTPEnabled', 'yes'], ['getPrimaryNTPServer'], ['setPrimaryNTPServer', 'time.example'],
  ['getSecondaryNTPServer'], ['setSecondaryNTPServer', ''], ['getMilitaryTimeEnabled'],
  ['setMilitaryTimeEnabled', 'yes'], ['setTime', '112120302026'],

  ['getNetworkType'], ['getDHCPEnabled'], ['getIP'], ['getSubnetMask'], ['getGateway'], ['getPrimaryDNS'],
  ['getSecondaryDNS'], ['getMACAddr'], ['getESSIDList'], ['getCachedESSIDList'],
  ['backgroundGetESSIDList', networks], 1000,

  ['registerConnectivityListener', connectivity],
  ['setWirelessNetworkDHCP', 'Lindenhof', 'WPA2PSK', 'AES', 'WPA', 'quittenbaum', '0', 'WPA2'], 7000,
  ['getConfiguredESSID'], ['getConfiguredESSIDListed'], ['getESSID'], ['getWirelessSecurity'], ['getSignalStrength'],
  ['getIP'], ['checkConnectivity'], 1000,
  ['setWirelessNetworkStatic', '192.168.1.77', '255.255.255.0', '192.168.1.1', '8.8.8.8', '192.168.1.1', 'Lindenhof',
   'WPA2PSK', 'AES', 'WPA', 'quittenbaum', '0', 'WPA2'], 5000,
  ['setWiredNetworkStatic', '10.0.0.7', '255.0.0.0', '10.0.0.1', '10.0.0.2', '10.0.0.1'], 5000,
  ['setWiredNetworkDHCP'], 5000, ['getProxy'], ['setProxy', 'proxy.example:3128'], ['getProxyEnabled'],
  ['setProxyEnabled', 'yes'], ['setProxyEnabled', 'no'],

  ['appLog', 'tour', 'started', `time ${starts}`], ['registerAboutListener', about], 500,
  ['registerUpdateListener', updates], ['GetUpdateList'], ['beginUpdate', 1],
];

// A method that the tour forgot would be a method that nobody sees.
const called = new Set(steps.filter(Array.isArray).map(([method]) => method));
const forgotten = Object.getOwnPropertyNames(Object.getPrototypeOf(util))
  .filter(name => name !== 'constructor' && name !== 'factoryReset' && !called.has(name));
if (forgotten.length > 0) throw new Error(`the tour leaves out ${forgotten.join(', ')}`);

const pause = milliseconds => new Promise(done => setTimeout(done, milliseconds));
const described = value => typeof value === 'object' ? String(value) : shown(value);

async function walk() {
  for (const [index, step] of steps.entries()) {
    if (!Array.isArray(step)) continue;
    const [method, ...values] = step;
    const result = /** @type {any} */ (util)[method](...values);
    await pause(Array.isArray(steps[index + 1]) ? SETTLE : steps[index + 1] ?? SETTLE);
    print(`${`${method}(${values.map(described).join(', ')})`.padEnd(46)} ${shown(result)}`.trimEnd());
    await pause(SETTLE / 2);
  }
  print(`The end of the tour: ${called.size} methods. factoryReset() would take all of it back.`);
  exit(0);
}

walk();
