// Chooses a wireless network and joins it, as a first-time set-up does.
//
//   build/bin/sorel --device device examples/wifi.js
//
// The networks in the air are in device/hw/ra0/cells.ini, with the passwords that join them. Where a user would type
// one, this script looks into its settings, wifi.ini: a line for each network.

const util = new ZQUtil();

const bars = (signal) => '|'.repeat(Math.max(0, Math.min(5, Math.round(signal / 12)))).padEnd(5, '.');
const lock = (network) => (network.Encrypted ? `${network.AuthType} ${network.WPAType}` : 'open');

/** What would be typed; the ready device's network is known from the start. */
const known = (name) => (name === 'Lindenhof' ? 'quittenbaum' : '');
const passwordFor = (network) => util.getIniSetting('wifi', network.Name, known(network.Name));

/** Joins, and tells each step. The host ends with the last one. */
const join = (network) => {
  const tell = (words) => () => print(words);
  const end = (words, status) => () => {
    print(words);
    print(`address ${util.getIP() || 'none'}, gateway ${util.getGateway()}`);
    exit(status);
  };
  util.registerConnectivityListener({
    onAssociation: tell('... joined'),
    onBeginDHCP: tell('... asking for an address'),
    onBeginConnectivityCheck: tell('... looking for the Internet'),
    onFailedAssociation: end('could not join: is the password right?', 1),
    onConnectSuccess: end('online', 0),
    onConnectFailure: end('joined, but the update server is not there', 0),
  });
  print(`joining ${network.Name}`);
  util.setWirelessNetworkDHCP(network.Name, network.AuthType, network.EncType, '', passwordFor(network), 0,
                              network.WPAType);
};

print('looking for networks');
util.backgroundGetESSIDList({
  onSSIDList() {
    const networks = util.getCachedESSIDList().sort((one, other) => other.Signal - one.Signal);
    for (const network of networks) print(`  ${bars(network.Signal)} ${network.Name.padEnd(20)} ${lock(network)}`);
    const mine = networks.find((network) => !network.Encrypted || passwordFor(network) !== '');
    if (mine) {
      join(mine);
    } else {
      print('none that this device knows');
      exit(1);
    }
  },
});
