// The screens of a device, without their drawing: what its user touches comes as a line in touch.ini, what the screens
// would show is printed.
const util = new ZQUtil();

const show = (...words) => print(words.join(' '));

// Whether the screen of the network is open. Checks for updates tell of the network, too, at moments of their own.
let opened = false;
const network = (words, last) => () => {
  if (!opened) return;
  // Before it shows: whoever reads the line touches the next button.
  if (last) opened = false;
  show(`network: ${words}`);
};
util.registerConnectivityListener({
  onAssociation: network('joined'),
  onFailedAssociation: network('cannot join', true),
  onBeginDHCP: network('asks for an address'),
  onDoneDHCP: network('has an address'),
  onBeginConnectivityCheck: network('looks for the Internet'),
  onConnectSuccess: network('online', true),
  onConnectFailure: network('no Internet', true),
});

// From its registration on the module looks for updates by itself.
const takeUpdates = () => util.registerUpdateListener({
  forcedUpdateAvailable: () => show('update: cannot wait'),
  onDownloading: (percent) => { if (percent === 100) show('update: there'); },
  onInstalling: () => show('update: installs'),
  onDownloadFailed: () => show('update: broke off'),
});

const buttons = {
  scan: () => util.backgroundGetESSIDList({
    onSSIDList() {
      const networks = util.getCachedESSIDList();
      for (const each of networks) show(`  ${each.Name}: ${each.Encrypted ? each.WPAType : 'open'}, ${each.Signal}`);
      show(`networks: ${networks.length}`);
    },
  }),
  join: (name, password) => {
    const chosen = util.getCachedESSIDList().find((each) => each.Name === name);
    opened = true;
    util.setWirelessNetworkDHCP(name, chosen.AuthType, chosen.EncType, '', password, 0, chosen.WPAType);
  },
  zone: (city) => {
    const zone = util.getTZList().find((each) => each.Description.includes(city));
    util.setTZ(zone.Name);
    util.setMilitaryTimeEnabled('yes');
    show(`clock: ${util.getTZ()}, 24 hours ${util.getMilitaryTimeEnabled()}`);
  },
  done: () => {
    util.setFirstTime('done');
    show('set-up: done');
  },
  brightness: (level) => {
    util.setBrightness(level);
    show(`screen: ${util.getBrightness()}`);
  },
  dim: (on) => {
    util.setDimMode(on);
    show(`screen: follows the light ${util.getDimMode()}`);
  },
  updates: () => {
    takeUpdates();
    // At once, in place of the look that the registration has asked for: the list changes with each.
    util.checkConnectivity();
    const look = setInterval(() => {
      const [first] = util.GetUpdateList();
      if (!first) return;
      clearInterval(look);
      show(`update: ${first.ID}, ${first.Name}`);
      util.beginUpdate(first.ID);
    }, 100);
  },
  network: () => {
    opened = true;
    util.checkConnectivity();
  },
  reset: () => {
    show('reset: everything as it left the factory');
    util.factoryReset();
  },
};

// What lies in the file at a start was touched before it.
const touched = () => util.getIniSetting('touch', 'touched', '');
let last = touched();
setInterval(() => {
  const now = touched();
  if (now === last) return;
  last = now;
  const [, button, ...words] = now.split(' ');
  if (button) buttons[button](...words);
}, 50);

// The mark is what a script stored, "No" when none did.
const isSetUp = util.getFirstTime() === 'done';
if (isSetUp) takeUpdates();
const version = util.GetVersion();
show(`start: ${version.Software}, battery ${util.batteryPct()} %, ${util.chargeStatus()}`);
show(`start: set up ${isSetUp}, network ${util.getConfiguredESSID() || 'none'}, ${util.getNetworkType()}`);
show(`start: ${util.getTZ()}, 24 hours ${util.getMilitaryTimeEnabled()}, brightness ${util.getBrightness()}, ` +
     `follows the light ${util.getDimMode()}`);
show('start: ready');
